/* A host built against an installed Pelicor: one object, one call, one message. */
#include <stdio.h>
#include <string.h>

#include <pelicor/pelicor.h>

int main(void) {
  pelicor* p = pelicor_new();
  char* msg = NULL;
  int result;
  if (p == NULL) return 1;
  result = pelicor_NfsValidation(p, NULL, "1", &msg);
  printf("%d %s\n", result, msg);
  result =
      result == 1 && strcmp(msg, "udump can not be empty or NULL! Check registry setting.") == 0;
  pelicor_free(msg);
  pelicor_delete(p);
  return result ? 0 : 1;
}

/* ftp_get_bench: times one FtpGetTraceFile through the C ABI, as a host calls it, and prints
 * the seconds it took and its msg.
 *   ftp_get_bench HOST:PORT USER PASSWORD UDUMP WORKDIR NAME */
#include <stdio.h>
#include <time.h>

#include "pelicor/pelicor.h"

int main(int argc, char** argv) {
  if (argc != 7) {
    fprintf(stderr, "usage: ftp_get_bench HOST:PORT USER PASSWORD UDUMP WORKDIR NAME\n");
    return 2;
  }
  pelicor* p = pelicor_new();
  char* msg = NULL;
  pelicor_FtpSetConnectInfo(p, argv[1], argv[2], argv[3], argv[4], &msg);
  pelicor_free(msg);
  pelicor_SetWorkingDir(p, argv[5], &msg);
  pelicor_free(msg);
  struct timespec start;
  struct timespec end;
  clock_gettime(CLOCK_MONOTONIC, &start);
  const int result = pelicor_FtpGetTraceFile(p, argv[6], &msg);
  clock_gettime(CLOCK_MONOTONIC, &end);
  printf("%.3f %s\n",
         (double)(end.tv_sec - start.tv_sec) + (double)(end.tv_nsec - start.tv_nsec) / 1e9, msg);
  pelicor_free(msg);
  pelicor_delete(p);
  return result;
}

/* The C ABI from C, linked as a host links it, for what the ABI adds to the service object: every
 * output receives a string of its own (freed with pelicor_free), also on failure and for a NULL
 * object; NULL is accepted for strings and for outputs that are not wanted. The sanitizers of
 * the test build report a string freed twice or never. Usage: c_api_test <fixture trace>. */
#define _XOPEN_SOURCE 700
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "pelicor/pelicor.h"

#ifdef _WIN32
#include <direct.h>
#include <io.h>
/* A fresh directory under the Windows temporary folder (under Wine: a host folder of the
 * prefix), named like the POSIX one. */
static char* make_scratch_dir(char* dir, size_t size) {
  const char* tmp = getenv("TMP");
  if (tmp == NULL || (size_t)snprintf(dir, size, "%s\\pelicor_c_api_XXXXXX", tmp) >= size ||
      _mktemp(dir) == NULL || _mkdir(dir) != 0)
    return NULL;
  return dir;
}
#define chdir _chdir
#define rmdir _rmdir
static const char* const kRootDir = "\\";
#else
#include <unistd.h>
static char* make_scratch_dir(char* dir, size_t size) {
  if (snprintf(dir, size, "/tmp/pelicor_c_api_XXXXXX") >= (int)size) return NULL;
  return mkdtemp(dir);
}
static const char* const kRootDir = "/";
#endif

static int failures = 0;

/* Checks result, message and (unless want_out is NULL) output, then frees both strings. */
static void expect(int line, int result, char* msg, char* out, int want_result,
                   const char* want_msg, const char* want_out) {
  int ok = result == want_result && msg != NULL && strcmp(msg, want_msg) == 0;
  if (want_out != NULL) ok = ok && out != NULL && strcmp(out, want_out) == 0;
  if (!ok) {
    fprintf(stderr, "line %d: got %d \"%s\" \"%s\"\n", line, result, msg ? msg : "(null)",
            out ? out : "(null)");
    ++failures;
  }
  pelicor_free(msg);
  pelicor_free(out);
}
#define EXPECT(call, want_result, want_msg, want_out)               \
  do {                                                              \
    char* msg = NULL;                                               \
    char* out = NULL;                                               \
    int r = call;                                                   \
    expect(__LINE__, r, msg, out, want_result, want_msg, want_out); \
  } while (0)

static int copy_file(const char* from, const char* to) {
  FILE* in = fopen(from, "rb");
  FILE* out = fopen(to, "wb");
  char buffer[4096];
  size_t n;
  int ok = in != NULL && out != NULL;
  while (ok && (n = fread(buffer, 1, sizeof buffer, in)) > 0) ok = fwrite(buffer, 1, n, out) == n;
  if (in) fclose(in);
  if (out) fclose(out);
  return ok;
}

int main(int argc, char** argv) {
  char dir[512];
  const char* null_object = "pelicor: the object is NULL";
  const char* no_trc = "Filename does not contain '.trc' !";
  pelicor* p = pelicor_new();
  if (argc != 2 || p == NULL || make_scratch_dir(dir, sizeof dir) == NULL || chdir(dir) != 0)
    return 2;
  if (!copy_file(argv[1], "orcl_ora_4242.trc")) return 2;

  /* The outputs of a success and of a failure; NULL for outputs that are not wanted. */
  EXPECT(pelicor_SetWorkingDir(p, dir, &msg), 0, "OK", NULL);
  EXPECT(pelicor_ZantivNfsTrcStartUp(p, dir, "4242", &out, &msg), 0, "OK", "orcl_ora_4242.xml");
  EXPECT(pelicor_ParseFile(p, "trace.log", 0, 0, 0, &out, &msg), 1, no_trc, "");
  EXPECT(pelicor_ParseFileEx(p, "orcl_ora_4242.trc", 1, 0, NULL, &msg), 0, "MORE", NULL);
  if (pelicor_SetSortOption(p, 1, 0, 1, 1, NULL) != 0) ++failures;
  /* NULL strings: missing for the argument checks, empty text elsewhere. */
  EXPECT(pelicor_NfsValidation(p, dir, NULL, &msg), 1, "PID is empty or NULL!", NULL);
  EXPECT(pelicor_ZantivFtpTrcStartUp(p, "h", NULL, "p", "/d", "1", &out, &msg), 1,
         "Hostname/username/password/udump can not be empty! Check registry setting.", "");
  EXPECT(pelicor_ParseFile(p, NULL, 0, 0, 0, &out, &msg), 1, no_trc, "");
  /* SFTP, beyond the 25 methods: nothing is contacted without a host. */
#ifdef PELICOR_WITH_SFTP
  EXPECT(pelicor_SftpSetConnectInfo(p, NULL, "oracle", NULL, "/u01", NULL, NULL, 0, &msg), 0, "OK",
         NULL);
  EXPECT(pelicor_SftpGetTraceFilePID(p, "4242", 0, &out, &msg), 1,
         "SFTP needs a host, a user and a trace directory; one of them is empty!", "");
#else
  EXPECT(pelicor_SftpGetTraceFilePID(p, "4242", 0, &out, &msg), 1,
         "SFTP is not available in this build (it was built without libssh)", "");
#endif
  /* FTP over TLS, beyond the 25 methods: switched on and off again without contacting anyone. */
#ifdef PELICOR_WITH_TLS
  EXPECT(pelicor_SetFtpTls(p, 1, NULL, 0, &msg), 0, "OK", NULL);
#else
  EXPECT(pelicor_SetFtpTls(p, 1, NULL, 0, &msg), 1,
         "FTP over TLS is not available in this build (it was built without OpenSSL)", NULL);
#endif
  EXPECT(pelicor_SetFtpTls(p, 0, NULL, 0, &msg), 0, "OK", NULL);
  /* No object: every output still set. */
  EXPECT(pelicor_SetWorkingDir(NULL, dir, &msg), 1, null_object, NULL);
  EXPECT(pelicor_NfsGetTraceFilePID(NULL, "4242", 0, &out, &msg), 1, null_object, "");
  pelicor_free(NULL);
  pelicor_delete(NULL);
  pelicor_delete(p); /* with its batch parse still running */

  /* Nothing but the trace and the portion's document was written. */
  if (remove("orcl_ora_4242.xml") != 0 || remove("orcl_ora_4242.trc") != 0 ||
      chdir(kRootDir) != 0 || rmdir(dir) != 0) {
    fprintf(stderr, "unexpected files in %s\n", dir);
    ++failures;
  }
  if (failures) fprintf(stderr, "%d failure(s)\n", failures);
  return failures ? 1 : 0;
}

/* The C ABI from C, on real files: a trace directory with one trace, a working directory, and
 * every kind of call a host makes. Usage: c_api_test <fixture trace>. */
#define _XOPEN_SOURCE 700
#include <ftw.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "pelicor/pelicor.h"

static int failures = 0;

#define CHECK(cond)                                                            \
  do {                                                                         \
    if (!(cond)) {                                                             \
      fprintf(stderr, "%s:%d: CHECK failed: %s\n", __FILE__, __LINE__, #cond); \
      ++failures;                                                              \
    }                                                                          \
  } while (0)

/* Checks result and message, then frees the message. */
static void expect(int result, char* msg, int want_result, const char* want_msg, int line) {
  if (msg == NULL || result != want_result || strcmp(msg, want_msg) != 0) {
    fprintf(stderr, "line %d: got %d \"%s\", want %d \"%s\"\n", line, result, msg ? msg : "(null)",
            want_result, want_msg);
    ++failures;
  }
  pelicor_free(msg);
}
#define EXPECT(call, want_result, want_msg)          \
  do {                                               \
    char* msg = NULL;                                \
    int r = call;                                    \
    expect(r, msg, want_result, want_msg, __LINE__); \
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

static int file_exists(const char* path) {
  FILE* file = fopen(path, "rb");
  if (file) fclose(file);
  return file != NULL;
}

static void share_and_parse(pelicor* p, const char* root) {
  char udump[512], work[512];
  char* out = NULL;
  int calls = 0;
  snprintf(udump, sizeof udump, "%s/udump", root);
  snprintf(work, sizeof work, "%s/work", root);

  EXPECT(pelicor_SetWorkingDir(p, work, &msg), 0, "OK");
  EXPECT(pelicor_ZantivNfsTrcStartUp(p, udump, "4242", &out, &msg), 0, "OK");
  CHECK(out != NULL && strcmp(out, "orcl_ora_4242.xml") == 0);
  pelicor_free(out);
  EXPECT(pelicor_NfsGetTraceFilePID(p, "4242", 1, &out, &msg), 0, "OK");
  CHECK(out != NULL && strcmp(out, "orcl_ora_4242.trc") == 0);
  pelicor_free(out);
  /* The copy in the working directory, parsed in batches from the start. */
  CHECK(chdir(work) == 0);
  for (;;) {
    char* msg = NULL;
    int result = pelicor_ParseFileEx(p, "orcl_ora_4242.trc", 1, 0, NULL, &msg);
    int more = result == 0 && strcmp(msg, "MORE") == 0;
    CHECK(result == 0 && (more || strcmp(msg, "OK") == 0));
    pelicor_free(msg);
    if (!more || ++calls > 10) break;
  }
  CHECK(calls == 2);
  CHECK(file_exists("orcl_ora_4242.xml"));
  CHECK(chdir("/") == 0);
}

/* Failures: the message of the failure, every output set, NULL where the host may pass it. */
static void failures_and_checks(pelicor* p) {
  char* out = NULL;
  EXPECT(pelicor_ParseFile(p, "trace.log", 0, 0, 0, &out, &msg), 1,
         "Filename does not contain '.trc' !");
  CHECK(out != NULL && out[0] == '\0');
  pelicor_free(out);
  EXPECT(pelicor_ParseFile(p, NULL, 0, 0, 0, NULL, &msg), 1, "Filename does not contain '.trc' !");
  EXPECT(pelicor_FtpValidation(p, "h", "u", "p", "/d", NULL, &msg), 1, "PID is empty or NULL!");
  EXPECT(pelicor_ZantivFtpTrcStartUp(p, "h", NULL, "p", "/d", "1", &out, &msg), 1,
         "Hostname/username/password/udump can not be empty! Check registry setting.");
  CHECK(out != NULL && out[0] == '\0');
  pelicor_free(out);
  EXPECT(pelicor_ZantivUtlTrcStartUp(p, 1, 92, "u", "p", NULL, "/d", "s", "1", "m", &out, &msg), 1,
         "UTL transport is not available in this build");
  pelicor_free(out);
  EXPECT(pelicor_FtpGetTraceFileList(p, 0, &msg), 1,
         "hostname/username/password/udump, one of them is empty!");
  EXPECT(pelicor_ZantivGetTraceInfo(p, "select", "9.2.0.4.0", &msg), 1,
         "UTL transport is not available in this build");
  EXPECT(pelicor_SetSortOption(p, 1, 0, 1, 1, &msg), 0, "OK");
  EXPECT(pelicor_SetWorkingDir(NULL, "/tmp", &msg), 1, "pelicor: the object is NULL");
  pelicor_free(NULL);
  pelicor_delete(NULL);
}

/* The first line of DIR/NAME, without its line end, into out. */
static int read_first_line(const char* dir, const char* name, char* out, int size) {
  char path[600];
  FILE* file;
  int ok;
  snprintf(path, sizeof path, "%s/%s", dir, name);
  file = fopen(path, "r");
  if (file == NULL) return 0;
  ok = fgets(out, size, file) != NULL;
  fclose(file);
  out[strcspn(out, "\r\n")] = '\0';
  return ok;
}

/* The trace file of a process, found and copied over FTP from proftpd of the test fixture
 * (PELICOR_FTP_STATE names its state folder); skipped when the run has no servers. */
static void ftp_lookup(const char* root) {
  const char* state = getenv("PELICOR_FTP_STATE");
  char user[64], password[64], port[16], host[64], work[512], copy[600];
  char* fname = NULL;
  pelicor* p;
  if (state == NULL || !read_first_line(state, "user", user, sizeof user) ||
      !read_first_line(state, "password", password, sizeof password) ||
      !read_first_line(state, "proftpd.port", port, sizeof port)) {
    printf("no FTP servers: FTP calls skipped\n");
    return;
  }
  snprintf(host, sizeof host, "127.0.0.1:%s", port);
  snprintf(work, sizeof work, "%s/work", root);
  p = pelicor_new();
  EXPECT(pelicor_SetWorkingDir(p, work, &msg), 0, "OK");
  EXPECT(pelicor_FtpSetConnectInfo(p, host, user, password, "/lookup", &msg), 0, "OK");
  EXPECT(pelicor_FtpGetTraceFilePID(p, "4711", 1, &fname, &msg), 0, "OK");
  CHECK(fname != NULL && strcmp(fname, "4711_ora.trc") == 0);
  pelicor_free(fname);
  snprintf(copy, sizeof copy, "%s/4711_ora.trc", work);
  CHECK(file_exists(copy));
  pelicor_delete(p);
}

static int remove_entry(const char* path, const struct stat* st, int flag, struct FTW* ftw) {
  (void)st;
  (void)flag;
  (void)ftw;
  return remove(path);
}

int main(int argc, char** argv) {
  char root[] = "/tmp/pelicor_c_api_XXXXXX";
  char path[600];
  pelicor* p;
  if (argc != 2 || mkdtemp(root) == NULL) return 2;
  snprintf(path, sizeof path, "%s/work", root);
  if (mkdir(path, 0755) != 0) return 2;
  snprintf(path, sizeof path, "%s/udump", root);
  if (mkdir(path, 0755) != 0) return 2;
  snprintf(path, sizeof path, "%s/udump/orcl_ora_4242.trc", root);
  if (!copy_file(argv[1], path)) return 2;

  p = pelicor_new();
  CHECK(p != NULL);
  share_and_parse(p, root);
  failures_and_checks(p);
  pelicor_delete(p);
  ftp_lookup(root);

  nftw(root, remove_entry, 16, FTW_DEPTH | FTW_PHYS);
  if (failures) fprintf(stderr, "%d failure(s)\n", failures);
  return failures ? 1 : 0;
}

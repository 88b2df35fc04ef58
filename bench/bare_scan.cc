// The floor a parse is measured against: reads a trace with fgets and scans the fields of its
// call, cursor, wait and STAT lines with sscanf, storing nothing.
//   bare_scan TRACE
// Prints the number of lines and a sum of the scanned figures (so that nothing is left out).
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

long long ScanLine(const char* line) {
  unsigned long long cursor = 0;
  long long c = 0;
  long long e = 0;
  long long tim = 0;
  int p = 0;
  int cr = 0;
  int cu = 0;
  int mis = 0;
  int r = 0;
  int dep = 0;
  int og = 0;
  char name[256];
  if (std::strncmp(line, "EXEC #", 6) == 0 || std::strncmp(line, "FETCH #", 7) == 0 ||
      std::strncmp(line, "PARSE #", 7) == 0) {
    std::sscanf(std::strchr(line, '#'),
                "#%llu:c=%lld,e=%lld,p=%d,cr=%d,cu=%d,mis=%d,r=%d,dep=%d,og=%d,tim=%lld", &cursor,
                &c, &e, &p, &cr, &cu, &mis, &r, &dep, &og, &tim);
    return c + e + p + cr + cu + mis + r + dep + og;
  }
  if (std::strncmp(line, "WAIT #", 6) == 0) {
    std::sscanf(line, "WAIT #%llu: nam='%255[^']' ela= %lld", &cursor, name, &e);
    return e;
  }
  if (std::strncmp(line, "STAT #", 6) == 0) {
    std::sscanf(line, "STAT #%llu id=%d cnt=%d pid=%d pos=%d obj=%d", &cursor, &p, &cr, &cu, &mis,
                &r);
    return p + cr;
  }
  if (std::strncmp(line, "PARSING IN CURSOR #", 19) == 0) {
    std::sscanf(line, "PARSING IN CURSOR #%llu len=%d dep=%d uid=%d oct=%d lid=%d tim=%lld",
                &cursor, &p, &dep, &cr, &cu, &og, &tim);
    return p + dep;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: bare_scan TRACE\n");
    return 2;
  }
  const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(argv[1], "rb"));
  if (!file) {
    std::perror(argv[1]);
    return 1;
  }
  char line[4096];
  long long lines = 0;
  long long sum = 0;
  while (std::fgets(line, sizeof line, file.get()) != nullptr) {
    ++lines;
    sum += ScanLine(line);
  }
  std::printf("%lld lines, sum %lld\n", lines, sum);
  return 0;
}

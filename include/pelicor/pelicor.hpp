// Pelicor for C++ hosts: the C ABI of pelicor.h in a class (namespace pelicorxx, as the C
// handle type already takes the name pelicor) that owns its object and hands out
// std::string. Header only; links against libpelicor like any C host.
//
//   pelicorxx::Pelicor service;
//   std::string xml, msg;
//   service.SetWorkingDir("/var/tmp/traces", &msg);
//   if (service.ParseFile("orcl_ora_4242.trc", 0, 0, 2, &xml, &msg) != 0) report(msg);
//
// Conventions as in pelicor.h: nullptr for a string that is missing; every output is set;
// 0 on success (msg "OK" or "MORE"), 1 on failure with the message in msg. Methods never throw;
// the constructor throws std::bad_alloc when the object cannot be made.
#ifndef PELICOR_PELICOR_HPP_
#define PELICOR_PELICOR_HPP_

#include <cstdint>
#include <new>
#include <string>

#include "pelicor/pelicor.h"

namespace pelicorxx {

class Pelicor {
 public:
  Pelicor() : p_(pelicor_new()) {
    if (p_ == nullptr) throw std::bad_alloc();
  }
  ~Pelicor() { pelicor_delete(p_); }
  Pelicor(const Pelicor&) = delete;
  Pelicor& operator=(const Pelicor&) = delete;

  int SetWorkingDir(const char* wDir, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_SetWorkingDir(p_, wDir, m); });
  }
  int SetSortOption(unsigned short prs, unsigned short exe, unsigned short fch, unsigned short key,
                    std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_SetSortOption(p_, prs, exe, fch, key, m); });
  }
  int FtpSetConnectInfo(const char* hostname, const char* username, const char* password,
                        const char* udump, std::string* msg) {
    return Call(msg, [&](char** m) {
      return pelicor_FtpSetConnectInfo(p_, hostname, username, password, udump, m);
    });
  }
  int NfsSetConnectInfo(const char* udump, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_NfsSetConnectInfo(p_, udump, m); });
  }

  int ParseFile(const char* fileName, unsigned short parseOption, unsigned short isAggregated,
                unsigned short xmlType, std::string* outputXML, std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_ParseFile(p_, fileName, parseOption, isAggregated, xmlType, o, m);
    });
  }
  int FtpParseFile(const char* fileName, unsigned short parseOption, unsigned short isAggregated,
                   unsigned short xmlType, std::string* outputXML, std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_FtpParseFile(p_, fileName, parseOption, isAggregated, xmlType, o, m);
    });
  }
  int NfsParseFile(const char* fileName, unsigned short parseOption, unsigned short isAggregated,
                   unsigned short xmlType, std::string* outputXML, std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_NfsParseFile(p_, fileName, parseOption, isAggregated, xmlType, o, m);
    });
  }

  int ParseFileEx(const char* fileName, unsigned short count, unsigned short flag,
                  std::string* outputXML, std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_ParseFileEx(p_, fileName, count, flag, o, m);
    });
  }
  int FtpParseFileEx(const char* fileName, unsigned short count, unsigned short flag,
                     std::string* outputXML, std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_FtpParseFileEx(p_, fileName, count, flag, o, m);
    });
  }
  int NfsParseFileEx(const char* fileName, unsigned short count, unsigned short flag,
                     std::string* outputXML, std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_NfsParseFileEx(p_, fileName, count, flag, o, m);
    });
  }

  int FtpGetTraceFileList(unsigned short listStyle, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_FtpGetTraceFileList(p_, listStyle, m); });
  }
  int NfsGetTraceFileList(unsigned short listStyle, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_NfsGetTraceFileList(p_, listStyle, m); });
  }
  int FtpGetTraceFile(const char* fileName, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_FtpGetTraceFile(p_, fileName, m); });
  }
  int NfsGetTraceFile(const char* fileName, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_NfsGetTraceFile(p_, fileName, m); });
  }
  int FtpGetTraceFilePID(const char* PID, unsigned short contents, std::string* fname,
                         std::string* msg) {
    return Call(fname, msg, [&](char** o, char** m) {
      return pelicor_FtpGetTraceFilePID(p_, PID, contents, o, m);
    });
  }
  int NfsGetTraceFilePID(const char* PID, unsigned short contents, std::string* fname,
                         std::string* msg) {
    return Call(fname, msg, [&](char** o, char** m) {
      return pelicor_NfsGetTraceFilePID(p_, PID, contents, o, m);
    });
  }
  int FtpGetTraceFileListPID(const char* PID, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_FtpGetTraceFileListPID(p_, PID, m); });
  }
  int NfsGetTraceFileListPID(const char* PID, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_NfsGetTraceFileListPID(p_, PID, m); });
  }

  int FtpValidation(const char* hostname, const char* username, const char* password,
                    const char* udump, const char* PID, std::string* msg) {
    return Call(msg, [&](char** m) {
      return pelicor_FtpValidation(p_, hostname, username, password, udump, PID, m);
    });
  }
  int NfsValidation(const char* udump, const char* PID, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_NfsValidation(p_, udump, PID, m); });
  }
  int UtlValidation(std::uint64_t oracleHandle, unsigned short ver, const char* username,
                    const char* password, const char* dsn, const char* udump, const char* sid,
                    const char* PID, std::string* msg) {
    return Call(msg, [&](char** m) {
      return pelicor_UtlValidation(p_, oracleHandle, ver, username, password, dsn, udump, sid, PID,
                                   m);
    });
  }
  int ZantivFtpTrcStartUp(const char* hostname, const char* username, const char* password,
                          const char* udump, const char* PID, std::string* outputXML,
                          std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_ZantivFtpTrcStartUp(p_, hostname, username, password, udump, PID, o, m);
    });
  }
  int ZantivNfsTrcStartUp(const char* udump, const char* PID, std::string* outputXML,
                          std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_ZantivNfsTrcStartUp(p_, udump, PID, o, m);
    });
  }
  int ZantivUtlTrcStartUp(std::uint64_t oracleHandle, unsigned short ver, const char* username,
                          const char* password, const char* dsn, const char* udump, const char* sid,
                          const char* PID, const char* marker, std::string* outputXML,
                          std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_ZantivUtlTrcStartUp(p_, oracleHandle, ver, username, password, dsn, udump, sid,
                                         PID, marker, o, m);
    });
  }
  int ZantivGetTraceInfo(const char* statement_id, const char* OraVer, std::string* msg) {
    return Call(msg,
                [&](char** m) { return pelicor_ZantivGetTraceInfo(p_, statement_id, OraVer, m); });
  }

  // SFTP, beyond the 25 methods (see pelicor.h).
  int SftpSetConnectInfo(const char* hostname, const char* username, const char* password,
                         const char* udump, const char* identityFile, const char* knownHostsFile,
                         unsigned short acceptNewHostKey, std::string* msg) {
    return Call(msg, [&](char** m) {
      return pelicor_SftpSetConnectInfo(p_, hostname, username, password, udump, identityFile,
                                        knownHostsFile, acceptNewHostKey, m);
    });
  }
  int SftpGetTraceFileList(unsigned short listStyle, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_SftpGetTraceFileList(p_, listStyle, m); });
  }
  int SftpGetTraceFile(const char* fileName, std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_SftpGetTraceFile(p_, fileName, m); });
  }
  int SftpGetTraceFilePID(const char* PID, unsigned short contents, std::string* fname,
                          std::string* msg) {
    return Call(fname, msg, [&](char** o, char** m) {
      return pelicor_SftpGetTraceFilePID(p_, PID, contents, o, m);
    });
  }
  int SftpParseFile(const char* fileName, unsigned short parseOption, unsigned short isAggregated,
                    unsigned short xmlType, std::string* outputXML, std::string* msg) {
    return Call(outputXML, msg, [&](char** o, char** m) {
      return pelicor_SftpParseFile(p_, fileName, parseOption, isAggregated, xmlType, o, m);
    });
  }

  // FTP over TLS, beyond the 25 methods (see pelicor.h).
  int SetFtpTls(unsigned short useTls, const char* caFile, unsigned short insecure,
                std::string* msg) {
    return Call(msg, [&](char** m) { return pelicor_SetFtpTls(p_, useTls, caFile, insecure, m); });
  }

 private:
  // Moves a string of the C ABI into `out` (when wanted) and frees it.
  static void Take(char* s, std::string* out) noexcept {
    if (out != nullptr) {
      try {
        out->assign(s != nullptr ? s : "");
      } catch (...) {
        out->clear();
      }
    }
    pelicor_free(s);
  }
  template <typename F>
  static int Call(std::string* msg, F&& f) noexcept {
    char* m = nullptr;
    const int result = f(&m);
    Take(m, msg);
    return result;
  }
  template <typename F>
  static int Call(std::string* out, std::string* msg, F&& f) noexcept {
    char* o = nullptr;
    char* m = nullptr;
    const int result = f(&o, &m);
    Take(o, out);
    Take(m, msg);
    return result;
  }

  pelicor* p_;
};

}  // namespace pelicorxx

#endif  // PELICOR_PELICOR_HPP_

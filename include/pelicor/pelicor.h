/* Pelicor C ABI: one opaque service object and one function per method of the service.
 *
 * Conventions
 *  - Strings are UTF-8, NUL-terminated. A NULL input string means "missing" (the argument
 *    checks of the session methods tell NULL apart from ""); elsewhere NULL is taken as "".
 *  - Every output (char **) always receives a new string, also on failure, and never NULL
 *    (unless the output pointer itself is NULL, which is allowed and means "not wanted").
 *    Free each with pelicor_free().
 *  - Each function returns 0 on success (msg "OK", or "MORE" when a batch parse has more to
 *    read) and 1 on failure, with the failure's message in msg. No exception crosses this
 *    boundary.
 *  - One object is used by one thread at a time; different objects may be used concurrently.
 */
#ifndef PELICOR_PELICOR_H_
#define PELICOR_PELICOR_H_

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32) && defined(PELICOR_BUILDING_DLL)
#define PELICOR_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(PELICOR_STATIC)
#define PELICOR_API __declspec(dllimport)
#elif defined(__GNUC__)
#define PELICOR_API __attribute__((visibility("default")))
#else
#define PELICOR_API
#endif

typedef struct pelicor pelicor; /* one CPelicor */

PELICOR_API pelicor* pelicor_new(void);
PELICOR_API void pelicor_delete(pelicor* p);
PELICOR_API void pelicor_free(char* s);

/* Listings and files over FTP and the file share. */
PELICOR_API int pelicor_FtpGetTraceFileList(pelicor* p, unsigned short listStyle, char** msg);
PELICOR_API int pelicor_FtpGetTraceFile(pelicor* p, const char* fileName, char** msg);
PELICOR_API int pelicor_NfsGetTraceFile(pelicor* p, const char* fileName, char** msg);
PELICOR_API int pelicor_FtpSetConnectInfo(pelicor* p, const char* hostname, const char* username,
                                          const char* password, const char* udump, char** msg);

/* Whole-file parses; outputXML receives the XML file's name. */
PELICOR_API int pelicor_ParseFile(pelicor* p, const char* fileName, unsigned short parseOption,
                                  unsigned short isAggregated, unsigned short xmlType,
                                  char** outputXML, char** msg);
PELICOR_API int pelicor_FtpParseFile(pelicor* p, const char* fileName, unsigned short parseOption,
                                     unsigned short isAggregated, unsigned short xmlType,
                                     char** outputXML, char** msg);
PELICOR_API int pelicor_NfsParseFile(pelicor* p, const char* fileName, unsigned short parseOption,
                                     unsigned short isAggregated, unsigned short xmlType,
                                     char** outputXML, char** msg);

PELICOR_API int pelicor_NfsSetConnectInfo(pelicor* p, const char* udump, char** msg);
PELICOR_API int pelicor_NfsGetTraceFileList(pelicor* p, unsigned short listStyle, char** msg);
PELICOR_API int pelicor_SetWorkingDir(pelicor* p, const char* wDir, char** msg);
PELICOR_API int pelicor_SetSortOption(pelicor* p, unsigned short prs, unsigned short exe,
                                      unsigned short fch, unsigned short key, char** msg);

/* The trace file of a server process; fname receives its name. */
PELICOR_API int pelicor_FtpGetTraceFilePID(pelicor* p, const char* PID, unsigned short contents,
                                           char** fname, char** msg);
PELICOR_API int pelicor_NfsGetTraceFilePID(pelicor* p, const char* PID, unsigned short contents,
                                           char** fname, char** msg);

/* Batch parses: call again while msg is "MORE". */
PELICOR_API int pelicor_ParseFileEx(pelicor* p, const char* fileName, unsigned short count,
                                    unsigned short flag, char** outputXML, char** msg);
PELICOR_API int pelicor_FtpParseFileEx(pelicor* p, const char* fileName, unsigned short count,
                                       unsigned short flag, char** outputXML, char** msg);
PELICOR_API int pelicor_NfsParseFileEx(pelicor* p, const char* fileName, unsigned short count,
                                       unsigned short flag, char** outputXML, char** msg);

/* Session start-up and validation.
 * The UTL forms read the trace through the database: oracleHandle is the host's OCI service
 * context (OCISvcCtx*, at full width; 0 logs on with username/password/dsn), ver its release
 * (92 is 9.2), sid "SID,SERIAL#" of the session (used when PID is empty or NULL). The Oracle
 * client library is loaded at run time: libclntsh.so / oci.dll, or PELICOR_OCI_LIBRARY. */
PELICOR_API int pelicor_ZantivFtpTrcStartUp(pelicor* p, const char* hostname, const char* username,
                                            const char* password, const char* udump,
                                            const char* PID, char** outputXML, char** msg);
PELICOR_API int pelicor_ZantivNfsTrcStartUp(pelicor* p, const char* udump, const char* PID,
                                            char** outputXML, char** msg);
PELICOR_API int pelicor_ZantivUtlTrcStartUp(pelicor* p, uint64_t oracleHandle, unsigned short ver,
                                            const char* username, const char* password,
                                            const char* dsn, const char* udump, const char* sid,
                                            const char* PID, const char* marker, char** outputXML,
                                            char** msg);
PELICOR_API int pelicor_ZantivGetTraceInfo(pelicor* p, const char* statement_id, const char* OraVer,
                                           char** msg);
PELICOR_API int pelicor_FtpValidation(pelicor* p, const char* hostname, const char* username,
                                      const char* password, const char* udump, const char* PID,
                                      char** msg);
PELICOR_API int pelicor_NfsValidation(pelicor* p, const char* udump, const char* PID, char** msg);
PELICOR_API int pelicor_UtlValidation(pelicor* p, uint64_t oracleHandle, unsigned short ver,
                                      const char* username, const char* password, const char* dsn,
                                      const char* udump, const char* sid, const char* PID,
                                      char** msg);
PELICOR_API int pelicor_FtpGetTraceFileListPID(pelicor* p, const char* PID, char** msg);
PELICOR_API int pelicor_NfsGetTraceFileListPID(pelicor* p, const char* PID, char** msg);

/* SFTP, beyond the 25 methods: as their FTP counterparts, over SSH's file protocol. The host key
 * is checked against knownHostsFile (NULL or "": ~/.ssh/known_hosts); acceptNewHostKey other
 * than 0 trusts and records an unknown one (a changed key is always refused). Log-on by
 * identityFile (NULL or "": the SSH agent and ~/.ssh's keys), then by password when given.
 * The listing file is "SftpTraceFileList.txt". Builds without libssh (Windows) answer 1 with
 * "SFTP is not available in this build (it was built without libssh)". */
PELICOR_API int pelicor_SftpSetConnectInfo(pelicor* p, const char* hostname, const char* username,
                                           const char* password, const char* udump,
                                           const char* identityFile, const char* knownHostsFile,
                                           unsigned short acceptNewHostKey, char** msg);
PELICOR_API int pelicor_SftpGetTraceFileList(pelicor* p, unsigned short listStyle, char** msg);
PELICOR_API int pelicor_SftpGetTraceFile(pelicor* p, const char* fileName, char** msg);
PELICOR_API int pelicor_SftpGetTraceFilePID(pelicor* p, const char* PID, unsigned short contents,
                                            char** fname, char** msg);
PELICOR_API int pelicor_SftpParseFile(pelicor* p, const char* fileName, unsigned short parseOption,
                                      unsigned short isAggregated, unsigned short xmlType,
                                      char** outputXML, char** msg);

/* FTP over TLS, beyond the 25 methods: useTls other than 0 makes every FTP method of the object
 * secure the control connection (AUTH TLS) before the user name and password go out, and every
 * data connection (PROT P); a server that refuses fails the method with nothing sent in clear
 * text. The server's certificate is checked against caFile (PEM; NULL or "": the system's trust
 * store) and the host name; insecure other than 0 accepts any certificate (a test server's
 * self-signed one). 0 goes back to plain FTP, the default. Builds without OpenSSL (Windows)
 * answer 1 to switching it on, with "FTP over TLS is not available in this build (it was
 * built without OpenSSL)". */
PELICOR_API int pelicor_SetFtpTls(pelicor* p, unsigned short useTls, const char* caFile,
                                  unsigned short insecure, char** msg);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* PELICOR_PELICOR_H_ */

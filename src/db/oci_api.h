// The part of the Oracle Call Interface (version 8 and later) that Pelicor uses, declared here
// from Oracle's published OCI reference: we never compile against Oracle's headers and never
// link the client library; its entry points are looked up at run time (OciLibrary).
//
// Types follow oratypes.h: ub4 is an unsigned 32-bit integer, sword a C int, OraText an
// unsigned char. Every handle is opaque.
#ifndef PELICOR_DB_OCI_API_H_
#define PELICOR_DB_OCI_API_H_

#include <cstddef>

namespace db::oci {

using ub1 = unsigned char;
using ub2 = unsigned short;
using sb2 = short;
using ub4 = unsigned int;
using sb4 = int;
using sword = int;
using OraText = unsigned char;

struct OCIEnv;
struct OCIError;
struct OCISvcCtx;
struct OCIStmt;
struct OCIBind;
struct OCIDefine;
struct OCISnapshot;

// Return codes.
inline constexpr sword OCI_SUCCESS = 0;
inline constexpr sword OCI_SUCCESS_WITH_INFO = 1;
inline constexpr sword OCI_NO_DATA = 100;
inline constexpr sword OCI_ERROR = -1;
inline constexpr sword OCI_INVALID_HANDLE = -2;

// Modes.
inline constexpr ub4 OCI_DEFAULT = 0;
inline constexpr ub4 OCI_THREADED = 1;

// Handle types.
inline constexpr ub4 OCI_HTYPE_ENV = 1;
inline constexpr ub4 OCI_HTYPE_ERROR = 2;
inline constexpr ub4 OCI_HTYPE_SVCCTX = 3;
inline constexpr ub4 OCI_HTYPE_STMT = 4;

// Attributes.
inline constexpr ub4 OCI_ATTR_ENV = 5;             // the environment a handle belongs to
inline constexpr ub4 OCI_ATTR_PREFETCH_ROWS = 11;  // rows fetched ahead per round trip

// Fetch orientation.
inline constexpr ub2 OCI_FETCH_NEXT = 2;

// Statement syntax.
inline constexpr ub4 OCI_NTV_SYNTAX = 1;

// External data types.
inline constexpr ub2 SQLT_INT = 3;  // native signed integer
inline constexpr ub2 SQLT_STR = 5;  // NUL-terminated text

// The largest error text OCIErrorGet hands out (OCI_ERROR_MAXMSG_SIZE).
inline constexpr std::size_t OCI_ERROR_MAXMSG_SIZE = 1024;

extern "C" {
using OCIEnvCreateFn = sword (*)(OCIEnv** envhpp, ub4 mode, void* ctxp,
                                 void* (*malocfp)(void* ctxp, std::size_t size),
                                 void* (*ralocfp)(void* ctxp, void* memptr, std::size_t newsize),
                                 void (*mfreefp)(void* ctxp, void* memptr), std::size_t xtramem_sz,
                                 void** usrmempp);
using OCIHandleAllocFn = sword (*)(const void* parenth, void** hndlpp, ub4 type,
                                   std::size_t xtramem_sz, void** usrmempp);
using OCIHandleFreeFn = sword (*)(void* hndlp, ub4 type);
using OCIAttrGetFn = sword (*)(const void* trgthndlp, ub4 trghndltyp, void* attributep, ub4* sizep,
                               ub4 attrtype, OCIError* errhp);
using OCIAttrSetFn = sword (*)(void* trgthndlp, ub4 trghndltyp, void* attributep, ub4 size,
                               ub4 attrtype, OCIError* errhp);
using OCIErrorGetFn = sword (*)(void* hndlp, ub4 recordno, OraText* sqlstate, sb4* errcodep,
                                OraText* bufp, ub4 bufsiz, ub4 type);
using OCILogonFn = sword (*)(OCIEnv* envhp, OCIError* errhp, OCISvcCtx** svchp,
                             const OraText* username, ub4 uname_len, const OraText* password,
                             ub4 passwd_len, const OraText* dbname, ub4 dbname_len);
using OCILogoffFn = sword (*)(OCISvcCtx* svchp, OCIError* errhp);
using OCIStmtPrepareFn = sword (*)(OCIStmt* stmtp, OCIError* errhp, const OraText* stmt,
                                   ub4 stmt_len, ub4 language, ub4 mode);
using OCIStmtExecuteFn = sword (*)(OCISvcCtx* svchp, OCIStmt* stmtp, OCIError* errhp, ub4 iters,
                                   ub4 rowoff, const OCISnapshot* snap_in, OCISnapshot* snap_out,
                                   ub4 mode);
using OCIStmtFetch2Fn = sword (*)(OCIStmt* stmtp, OCIError* errhp, ub4 nrows, ub2 orientation,
                                  sb4 fetchOffset, ub4 mode);
using OCIDefineByPosFn = sword (*)(OCIStmt* stmtp, OCIDefine** defnpp, OCIError* errhp,
                                   ub4 position, void* valuep, sb4 value_sz, ub2 dty, void* indp,
                                   ub2* rlenp, ub2* rcodep, ub4 mode);
using OCIBindByNameFn = sword (*)(OCIStmt* stmtp, OCIBind** bindpp, OCIError* errhp,
                                  const OraText* placeholder, sb4 placeh_len, void* valuep,
                                  sb4 value_sz, ub2 dty, void* indp, ub2* alenp, ub2* rcodep,
                                  ub4 maxarr_len, ub4* curelep, ub4 mode);
}

}  // namespace db::oci

#endif  // PELICOR_DB_OCI_API_H_

// Reading the parts of FTP replies and of host texts that the client acts on. Pure functions
// over text: no sockets, no state, never throw (the fuzz target drives them directly).
#ifndef PELICOR_TRANSPORT_FTP_REPLY_PARSE_H_
#define PELICOR_TRANSPORT_FTP_REPLY_PARSE_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace transport {

// The size a preliminary reply announces:
//   150 Opening BINARY mode data connection for ora_1234.trc (12345 bytes)
// gives 12345. 0 unless the reply starts with 150 or 125 and holds " bytes" (any case) right
// after a number.
std::uint64_t ParseAnnouncedSize(std::string_view reply);

// The address and port of a passive-mode reply:
//   227 Entering Passive Mode (127,0,0,1,195,80).
// gives "127.0.0.1" and 195 * 256 + 80; blanks around the numbers are allowed
// ("(127,0,0,1, 171, 37)"). False without "(", with fewer than five commas after it, or with
// a port byte that is not a number up to 255.
bool ParsePassiveReply(std::string_view reply, std::string* host, std::uint16_t* port);

// The port of an extended passive reply (RFC 2428):
//   229 Entering Extended Passive Mode (|||6446|)
// The delimiter is whatever character follows "(". False for anything else or port 0.
bool ParseExtendedPassiveReply(std::string_view reply, std::uint16_t* port);

// The size of a SIZE reply: "213 1234567". False when no number follows the code.
bool ParseSizeReply(std::string_view reply, std::uint64_t* size);

// The directory of a PWD reply: 257 "/u01/udump" is the current directory. A doubled quote
// inside stands for one quote. False when the reply holds no quoted text.
bool ParseQuotedDirectory(std::string_view reply, std::string* directory);

// Splits "host", "host:port", "[v6]:port", "[v6]" or a bare IPv6 address. *port is 0 when
// the text names none. False for an empty host or a port that is not 1 to 65535.
bool SplitHostPort(std::string_view text, std::string* host, std::uint16_t* port);

}  // namespace transport

#endif  // PELICOR_TRANSPORT_FTP_REPLY_PARSE_H_

// Local files by the platform's raw handle, for transfers that write blocks as they arrive
// and for callers that hand over a handle they opened themselves. No call throws.
#ifndef PELICOR_SUPPORT_OS_FILE_HANDLE_H_
#define PELICOR_SUPPORT_OS_FILE_HANDLE_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace os {

// A file descriptor (a C run-time descriptor on Windows); kNoFile is none.
using FileHandle = std::intptr_t;
constexpr FileHandle kNoFile = -1;

// Creates the file or truncates it, for writing (the platform's _lcreat).
FileHandle CreateFileForWrite(const std::string& path);
FileHandle OpenFileForRead(const std::string& path);
// Opens for writing at the end, creating the file when missing.
FileHandle OpenFileForAppend(const std::string& path);

// Bytes written, or -1.
std::ptrdiff_t WriteToFile(FileHandle file, const char* data, std::size_t size);
bool CloseFile(FileHandle file);

// The platform's text for the last failed file call (strerror(errno) or FormatMessage).
std::string LastFileErrorText();

}  // namespace os

#endif  // PELICOR_SUPPORT_OS_FILE_HANDLE_H_

#include "hosting/com/bstr_text.h"

#include <limits>

namespace com {

NarrowArg::NarrowArg(BSTR wide) : missing_(wide == nullptr) {
  if (missing_) return;
  // SysStringLen, not a search for L'\0': a BSTR is counted and may hold NULs.
  const UINT length = SysStringLen(wide);
  if (length == 0 || length > static_cast<UINT>(std::numeric_limits<int>::max())) return;
  const int wide_length = static_cast<int>(length);
  const int size = WideCharToMultiByte(CP_ACP, 0, wide, wide_length, nullptr, 0, nullptr, nullptr);
  if (size <= 0) return;
  text_.resize(static_cast<std::size_t>(size));
  WideCharToMultiByte(CP_ACP, 0, wide, wide_length, &text_[0], size, nullptr, nullptr);
}

BSTR NewBstr(const std::string& text) noexcept {
  if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return nullptr;
  const int length = static_cast<int>(text.size());
  if (length == 0) return SysAllocStringLen(nullptr, 0);
  const int size = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
  if (size <= 0) return SysAllocStringLen(nullptr, 0);
  BSTR wide = SysAllocStringLen(nullptr, static_cast<UINT>(size));
  if (wide != nullptr) MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide, size);
  return wide;
}

}  // namespace com

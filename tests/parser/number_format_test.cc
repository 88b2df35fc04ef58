#include "parser/number_format.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using parser::AlignRight;

// What the writers print for `value` at `width`, next to what printf prints.
void ExpectLikePrintf(double value, int width) {
  char ours[parser::kMaxFixed2Chars + 16];
  char theirs[400];
  std::snprintf(theirs, sizeof theirs, "%*.2f", width, value);
  char* end = AlignRight(ours, parser::FormatFixed2(ours, value), std::size_t(width));
  ASSERT_EQ(std::string(ours, end), theirs) << value;
}

void ExpectLikePrintf(std::int64_t value, int width) {
  char ours[parser::kMaxDecimalChars + 16];
  char theirs[64];
  std::snprintf(theirs, sizeof theirs, "%*" PRId64, width, value);
  char* end = AlignRight(ours, parser::FormatDecimal(ours, value), std::size_t(width));
  ASSERT_EQ(std::string(ours, end), theirs) << value;
}

TEST(NumberFormat, Fixed2MatchesPrintf) {
  const double inf = std::numeric_limits<double>::infinity();
  // clang-format off
  std::vector<double> values = {0.0, -0.0, 0.125, 0.375, 2.675, 1.005, 0.005, -0.125, -2.675,
                                1e20, -1e300, 1e300, 5e-324, 0.995, 99999.995, 123.455,
                                1.7976931348623157e308, inf, -inf};
  // clang-format on
  // Every thousandth between -20 and 20 (the halves), and tick sums times the reciprocal of
  // both divisors, as the documents compute them.
  for (int i = -20000; i <= 20000; ++i) values.push_back(i / 1000.0);
  for (std::int64_t ticks = -1000; ticks <= 100000; ticks += 7) {
    values.push_back(static_cast<double>(ticks) * (1.0 / 100));
    values.push_back(static_cast<double>(ticks * 131) * (1.0 / 1000000));
  }
  std::mt19937_64 random(20260101);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isnan(value)) values.push_back(value);
  }
  // Hundredths and near-ties at every magnitude the figures reach, on both sides of the limit
  // where formatting leaves the scaled-integer path, and the neighbours of each.
  for (double magnitude = 1; magnitude < 1e14; magnitude *= 10) {
    for (int i = 0; i < 2000; ++i) {
      const double base = magnitude * static_cast<double>(random() % 1000) / 7 +
                          static_cast<double>(random() % 1000) / 1000 + 0.005;
      for (const double value : {base, std::nextafter(base, 0.0), std::nextafter(base, 1e300)}) {
        values.push_back(value);
        values.push_back(-value);
      }
    }
  }
  for (const double limit : {10995116277.76, 10995116277.755, 10995116277.765}) {
    values.push_back(limit);
    values.push_back(std::nextafter(limit, 0.0));
    values.push_back(std::nextafter(limit, 1e300));
  }
  for (const double value : values) {
    for (const int width : {0, 8, 10}) ExpectLikePrintf(value, width);
  }
}

// A NaN prints as glibc prints it, its sign included, on every platform (MinGW's printf drops
// the sign, so NaNs are not compared with printf above).
TEST(NumberFormat, Fixed2NotANumberKeepsItsSign) {
  char text[parser::kMaxFixed2Chars];
  EXPECT_EQ(std::string(text, parser::FormatFixed2(text, std::nan(""))), "nan");
  EXPECT_EQ(std::string(text, parser::FormatFixed2(text, -std::nan(""))), "-nan");
  EXPECT_EQ(std::string(text, AlignRight(text, parser::FormatFixed2(text, -std::nan("")), 6)),
            "  -nan");
}

TEST(NumberFormat, DecimalMatchesPrintf) {
  std::vector<std::int64_t> values = {std::numeric_limits<std::int64_t>::max(),
                                      std::numeric_limits<std::int64_t>::min()};
  for (const std::int64_t edge : {0, -1, 99999, 100000, -99999, -100000, 2147483647}) {
    values.push_back(edge);
  }
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    values.push_back(static_cast<std::int64_t>(random() >> (random() % 64)) * (i % 2 ? -1 : 1));
  }
  for (const std::int64_t value : values) {
    for (const int width : {0, 6, 10}) ExpectLikePrintf(value, width);
  }
  char text[parser::kMaxDecimalChars];
  EXPECT_EQ(std::string(text, parser::FormatDecimal(text, ~std::uint64_t{0})),
            "18446744073709551615");
}

}  // namespace

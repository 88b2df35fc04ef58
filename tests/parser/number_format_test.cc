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
using parser::FormatDecimal;
using parser::FormatFixed2;

// "%<width>.2f"; width 0 is plain "%.2f".
std::string Printf(double value, int width = 0) {
  char text[400];
  std::snprintf(text, sizeof text, "%*.2f", width, value);
  return text;
}

std::string Printf(std::int64_t value, int width = 0) {
  char text[64];
  std::snprintf(text, sizeof text, "%*" PRId64, width, value);
  return text;
}

std::string Fixed2(double value, std::size_t width = 0) {
  char text[parser::kMaxFixed2Chars + 16];
  return std::string(text, AlignRight(text, FormatFixed2(text, value), width));
}

std::string Decimal(std::int64_t value, std::size_t width = 0) {
  char text[parser::kMaxDecimalChars + 16];
  return std::string(text, AlignRight(text, FormatDecimal(text, value), width));
}

std::vector<double> DoublesWorthChecking() {
  const double inf = std::numeric_limits<double>::infinity();
  std::vector<double> values = {0.0,          -0.0,
                                0.125,        0.375,
                                2.675,        1.005,
                                0.005,        0.015,
                                0.045,        -0.125,
                                -2.675,       1e20,
                                -1e300,       1e300,
                                5e-324,       0.994999,
                                0.995,        99999.995,
                                1e15,         123.455,
                                -1e-10,       1.7976931348623157e308,
                                inf,          -inf,
                                std::nan(""), -std::nan("")};
  // Every multiple of a thousandth between -20 and 20: the halves printf must round on the
  // exact binary value.
  for (int i = -20000; i <= 20000; ++i) values.push_back(i / 1000.0);
  // Centisecond and microsecond sums multiplied by the reciprocal, as the documents do.
  for (std::int64_t ticks = -1000; ticks <= 100000; ticks += 7) {
    values.push_back(static_cast<double>(ticks) * (1.0 / 100));
    values.push_back(static_cast<double>(ticks * 131) * (1.0 / 1000000));
  }
  std::mt19937_64 random(20260101);
  for (int i = 0; i < 20000; ++i) {
    std::uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    values.push_back(value);
  }
  return values;
}

TEST(NumberFormat, Fixed2MatchesPrintf) {
  for (const double value : DoublesWorthChecking()) {
    ASSERT_EQ(Fixed2(value), Printf(value)) << value;
    ASSERT_EQ(Fixed2(value, 8), Printf(value, 8)) << value;
    ASSERT_EQ(Fixed2(value, 10), Printf(value, 10)) << value;
  }
}

TEST(NumberFormat, DecimalMatchesPrintf) {
  std::vector<std::int64_t> values = {0,
                                      -1,
                                      9,
                                      10,
                                      -10,
                                      99999,
                                      100000,
                                      999999,
                                      1000000,
                                      -99999,
                                      -100000,
                                      2147483647,
                                      -2147483648LL,
                                      std::numeric_limits<std::int64_t>::max(),
                                      std::numeric_limits<std::int64_t>::min()};
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    values.push_back(static_cast<std::int64_t>(random() >> (random() % 64)) * (i % 2 ? -1 : 1));
  }
  for (const std::int64_t value : values) {
    ASSERT_EQ(Decimal(value), Printf(value));
    ASSERT_EQ(Decimal(value, 6), Printf(value, 6));
    ASSERT_EQ(Decimal(value, 10), Printf(value, 10));
  }
}

TEST(NumberFormat, UnsignedKeepsAllDigits) {
  char text[parser::kMaxDecimalChars];
  const std::uint64_t max = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(std::string(text, FormatDecimal(text, max)), "18446744073709551615");
  EXPECT_EQ(std::string(text, FormatDecimal(text, std::uint64_t{140736410372616})),
            "140736410372616");
}

}  // namespace

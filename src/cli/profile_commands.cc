#include "cli/profile_commands.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

#include "cli/local_trace.h"
#include "cli/progress.h"
#include "report/html_report.h"
#include "report/profile_text.h"
#include "report/profiling_parser.h"

namespace cli {

namespace {

struct ProfileArgs {
  std::string trace;
  std::size_t top = 10;
  std::string output;  // empty: standard output
};

std::uint64_t FileSize(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

report::Profile ProfileOf(const std::string& trace) {
  const LocalTrace local(trace);
  report::ProfilingParser parser;
  ProgressMeter progress("parsing " + trace, FileSize(local.path()));
  parser.SetProgressCallback([&progress](std::uint64_t done) { progress.Update(done); });
  parser.Parse(local.path(), 0);
  parser.SetProgressCallback(nullptr);
  report::Profile profile = parser.TakeProfile();
  // A trace without a header line naming its file is named as the user named it.
  if (profile.header.file == local.path()) profile.header.file = trace;
  return profile;
}

// The page goes under a temporary name beside the target and takes its name when complete, so
// a failure leaves no half-written page (and keeps an earlier one).
void WritePage(const std::string& page, const std::string& target) {
  if (target.empty()) {
    std::cout << page << std::flush;
    if (!std::cout) throw std::runtime_error("cannot write to standard output");
    return;
  }
  const std::string temporary = target + ".part";
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    if (!out) throw std::runtime_error("cannot create " + temporary);
    out << page;
    out.close();
    if (!out) {
      std::remove(temporary.c_str());
      throw std::runtime_error("cannot write " + temporary);
    }
  }
  std::error_code error;
  std::filesystem::rename(temporary, target, error);
  if (error) {
    std::remove(temporary.c_str());
    throw std::runtime_error("cannot write " + target + ": " + error.message());
  }
}

}  // namespace

void AddProfileCommands(CLI::App& app) {
  auto profile = std::make_shared<ProfileArgs>();
  CLI::App* profile_command = app.add_subcommand(
      "profile", "Response-time profile of a trace file: where the time went, top statements");
  profile_command
      ->add_option("TRACE", profile->trace, "The trace file (compressed, .zip, - for stdin)")
      ->required();
  profile_command->add_option("--top", profile->top, "Statements to show in detail")
      ->capture_default_str();
  profile_command->callback([profile] {
    report::WriteProfileText(ProfileOf(profile->trace), profile->top, std::cout);
    std::cout.flush();
    if (!std::cout) throw std::runtime_error("cannot write to standard output");
  });

  auto html = std::make_shared<ProfileArgs>();
  html->top = 20;
  CLI::App* html_command =
      app.add_subcommand("html", "Response-time profile of a trace file as one HTML page");
  html_command->add_option("TRACE", html->trace, "The trace file (compressed, .zip, - for stdin)")
      ->required();
  html_command->add_option("--top", html->top, "Statements to show in detail")
      ->capture_default_str();
  html_command->add_option("-o,--output", html->output, "Write to FILE, not standard output")
      ->option_text("FILE");
  html_command->callback([html] {
    report::HtmlOptions options;
    options.top = html->top;
    WritePage(report::HtmlReport(ProfileOf(html->trace), options), html->output);
  });
}

}  // namespace cli

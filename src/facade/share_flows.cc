// The file-share methods: listings, copies and the trace file of a server process, found in a
// trace directory that this machine reaches as a path.
#include "facade/method_rules.h"
#include "facade/pelicor.h"
#include "support/os/file_copy.h"
#include "transport/nfs/nfs_manager.h"

namespace facade {

std::unique_ptr<transport::CNfsManager> CPelicor::MakeShareManager() const {
  auto manager = std::make_unique<transport::CNfsManager>();
  manager->Init(nfs_info_);
  manager->SetLocalDirectory(working_dir_);
  return manager;
}

int CPelicor::NfsGetTraceFileList(std::uint16_t listStyle, std::string* msg) {
  return RunMethod(msg, [&] { MakeShareManager()->GetTraceFileList(listStyle, kAllTraceFiles); });
}

int CPelicor::NfsGetTraceFileListPID(const char* PID, std::string* msg) {
  return RunMethod(
      msg, [&] { MakeShareManager()->GetTraceFileList(kLongListing, TraceFilesOfPid(Text(PID))); });
}

// The copy is the platform's, overwriting; whether it worked is for the caller to see in the
// working directory, as hosts have always done.
int CPelicor::NfsGetTraceFile(const char* fileName, std::string* msg) {
  const std::string file_name = Text(fileName);
  return RunMethod(msg, [&] {
    const std::string target = working_dir_.empty() ? file_name : LocalPath(file_name);
    os::CopyFileOverwrite(SharePath(file_name), target);
  });
}

int CPelicor::NfsGetTraceFilePID(const char* PID, std::uint16_t contents, std::string* fname,
                                 std::string* msg) {
  fname->clear();
  return RunMethod(msg, [&] {
    start_offset_ = MakeShareManager()->GetTraceFileNameFromPID(Text(PID), &trace_file_name_);
    if (contents != 0) {
      const std::string target =
          working_dir_.empty() ? trace_file_name_ : LocalPath(trace_file_name_);
      os::CopyFileOverwrite(SharePath(trace_file_name_), target);
    }
    *fname = trace_file_name_;
  });
}

int CPelicor::NfsValidation(const char* udump, const char* PID, std::string* msg) {
  if (AnyMissing({udump})) {
    return RefuseArguments("udump can not be empty or NULL! Check registry setting.", msg);
  }
  if (AnyMissing({PID})) return RefuseArguments("PID is empty or NULL!", msg);
  return RunMethod(msg, [&] {
    transport::CNfsManager manager;
    manager.SetConnectInfo(udump);
    manager.SetLocalDirectory(working_dir_);
    start_offset_ = manager.GetTraceFileNameFromPID(PID, &trace_file_name_);
    transport_kind_ = kFileShare;
  });
}

int CPelicor::ZantivNfsTrcStartUp(const char* udump, const char* PID, std::string* outputXML,
                                  std::string* msg) {
  outputXML->clear();
  if (AnyMissing({udump, PID})) {
    return RefuseArguments("udump/PID can not be empty! Check registry setting.", msg);
  }
  return RunMethod(msg, [&] {
    nfs_info_.SetUdump(udump);
    nfs_info_.SetWorkingDir(working_dir_);
    start_offset_ = MakeShareManager()->GetTraceFileNameFromPID(PID, &trace_file_name_);
    *outputXML = XmlFileName(trace_file_name_);
    transport_kind_ = kFileShare;
  });
}

}  // namespace facade

// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/picture_file.h"

#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "host/pictures/channels.h"
#include "host/pictures/floats/float_picture.h"
#include "host/support/failure.h"
#include "host/support/input_file.h"
#include "host/support/system.h"
#include "host/support/temporary_file.h"

namespace glimmerhost {

namespace fs = std::filesystem;

namespace {

// Throws what reading does of a file that cannot hold a picture.
void CheckFile(const fs::path& file) {
  RequireFile(file);
  std::error_code error;
  if (fs::file_size(file, error) == 0) {
    ReadFailure(file, "empty");
  }
}

}  // namespace

OutputFormat OutputFormatOf(const fs::path& file) {
  const std::optional<OutputFormat> format = FormatOf(file);
  if (!format) {
    throw MustBe("-o", std::string("a name that ends in ") + kWritableEndings, file.string());
  }
  return *format;
}

Picture ReadPicture(const fs::path& file, const ReadOptions& options, ReadReport* report) {
  CheckFile(file);
  Picture picture = ReadFormat(file, options, report);
  if (options.precision == Precision::kFloat) {
    MakeFloat(&picture);
  }
  return picture;
}

PictureHead ReadPictureHead(const fs::path& file) {
  CheckFile(file);
  return ReadFormatHead(file);
}

Picture ReadPicture(const fs::path& file, const std::string& keptFor, std::string* warning) {
  ReadReport report;
  ReadOptions options;
  options.keptFor = keptFor;
  Picture picture = ReadPicture(file, options, &report);
  for (const std::string& line : report.lines) {
    *warning += (warning->empty() ? "" : "; ") + line;
  }
  return picture;
}

PictureOutput::PictureOutput(fs::path file, bool overwrite)
    : file_(std::move(file)), format_(OutputFormatOf(file_)), overwrite_(overwrite) {
  std::error_code error;
  if (fs::is_directory(file_, error)) {
    throw Failure(file_.string() + ": is a folder");
  }
  if (!overwrite_ && fs::exists(file_, error)) {
    throw Failure(file_.string() + ": exists already; --overwrite replaces it");
  }
  const fs::path folder = file_.has_parent_path() ? file_.parent_path() : fs::path(".");
  if (!fs::is_directory(folder, error)) {
    throw Failure(folder.string() + ": not found");
  }
  if (!IsWritable(folder)) {
    throw Failure(folder.string() + ": the folder cannot be written to");
  }
}

void PictureOutput::Write(const Picture& picture, const Coding& coding,
                          std::vector<NotCarried>* lost,
                          const std::function<void(const fs::path&)>& finished) {
  try {
    TemporaryFile part(file_);
    WriteFormat({part.Path(), file_.filename().string()}, format_, picture, coding, lost);
    if (finished) {
      finished(part.Path());
    }
    part.MoveIn(overwrite_);
  } catch (const Failure& fault) {
    throw Failure(file_.string() + ": cannot be written: " + fault.what());
  }
}

}  // namespace glimmerhost

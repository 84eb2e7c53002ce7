// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/openimageio/opencolorio_config.h"

#include <OpenColorIO/OpenColorIO.h>

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <utility>

#include "host/support/failure.h"
#include "host/support/input_file.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;
namespace ocio = OCIO_NAMESPACE;

[[noreturn]] void Fail(const fs::path& file, std::string why) {
  std::replace(why.begin(), why.end(), '\n', ' ');
  throw Failure(file.string() + ": " + why);
}

class Transform final : public ColourTransform {
 public:
  explicit Transform(ocio::ConstCPUProcessorRcPtr processor) : processor_(std::move(processor)) {}

  void Apply(std::vector<float>* colours) const override {
    const auto count = static_cast<long>(colours->size() / 3);
    if (count > 0) {
      ocio::PackedImageDesc image(colours->data(), count, 1, 3);
      processor_->apply(image);
    }
  }

 private:
  ocio::ConstCPUProcessorRcPtr processor_;
};

class Config final : public ColourConfig {
 public:
  Config(fs::path file, ocio::ConstConfigRcPtr config)
      : file_(std::move(file)), config_(std::move(config)) {}

  std::vector<std::string> Names() const override {
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(config_->getNumColorSpaces()) +
                  static_cast<std::size_t>(config_->getNumRoles()));
    for (int i = 0; i < config_->getNumColorSpaces(); ++i) {
      names.emplace_back(config_->getColorSpaceNameByIndex(i));
    }
    for (int i = 0; i < config_->getNumRoles(); ++i) {
      names.emplace_back(config_->getRoleName(i));
    }
    return names;
  }

  bool Knows(const std::string& name) const override {
    return config_->getColorSpace(name.c_str()) != nullptr;
  }

  std::shared_ptr<const ColourPath> Path(const std::string& in,
                                         const std::string& out) const override {
    if (!config_->hasRole(kWorkingSpace)) {
      Fail(file_, std::string("the configuration has no role ") + kWorkingSpace +
                      ", which the effect works in");
    }
    auto path = std::make_shared<ColourPath>();
    path->in = Between(in, kWorkingSpace, &path->identity);
    path->out = Between(kWorkingSpace, out, &path->identity);
    path->sameSpace = NameOf(in) == NameOf(out);
    return path;
  }

  // The library has the usual display first, and of each display the usual view.
  std::vector<std::string> Displays() const override {
    std::vector<std::string> displays;
    displays.reserve(static_cast<std::size_t>(config_->getNumDisplays()));
    for (int i = 0; i < config_->getNumDisplays(); ++i) {
      displays.emplace_back(config_->getDisplay(i));
    }
    return displays;
  }

  std::vector<std::string> Views(const std::string& display) const override {
    const int count = config_->getNumViews(display.c_str());
    std::vector<std::string> views;
    views.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
      views.emplace_back(config_->getView(display.c_str(), i));
    }
    return views;
  }

  std::shared_ptr<const ColourTransform> DisplayPath(const std::string& in,
                                                     const std::string& display,
                                                     const std::string& view) const override {
    return Made(
        [&] {
          return config_->getProcessor(in.c_str(), display.c_str(), view.c_str(),
                                       ocio::TRANSFORM_DIR_FORWARD);
        },
        nullptr);
  }

 private:
  std::string NameOf(const std::string& name) const {
    return config_->getColorSpace(name.c_str())->getName();
  }

  std::shared_ptr<const ColourTransform> Between(const std::string& from, const std::string& to,
                                                 std::string* identity) const {
    return Made([&] { return config_->getProcessor(from.c_str(), to.c_str()); }, identity);
  }

  // Null where the library's processor does nothing.
  //   identity  gets what the transform does; null if nobody asks
  template <class GetProcessor>
  std::shared_ptr<const ColourTransform> Made(const GetProcessor& getProcessor,
                                              std::string* identity) const {
    try {
      const ocio::ConstProcessorRcPtr processor = getProcessor();
      const bool isNoOp = processor->isNoOp();
      const ocio::ConstCPUProcessorRcPtr onCpu =
          isNoOp ? nullptr : processor->getDefaultCPUProcessor();
      if (identity != nullptr) {
        // Made from all that the transform does, tables in files of their own included.
        *identity += (isNoOp ? std::string() : onCpu->getCacheID()) + "/";
      }
      return isNoOp ? nullptr : std::make_shared<Transform>(onCpu);
    } catch (const ocio::Exception& fault) {
      Fail(file_, fault.what());
    }
  }

  fs::path file_;
  ocio::ConstConfigRcPtr config_;
};

}  // namespace

std::unique_ptr<const ColourConfig> LoadOpenColorIoConfig(const fs::path& file) {
  RequireFile(file);
  // What there is to say, the library also throws.
  ocio::SetLoggingLevel(ocio::LOGGING_LEVEL_NONE);
  try {
    return std::make_unique<Config>(file, ocio::Config::CreateFromFile(file.c_str()));
  } catch (const ocio::Exception& fault) {
    Fail(file, std::string("not a colour configuration that can be read: ") + fault.what());
  }
}

}  // namespace glimmerhost

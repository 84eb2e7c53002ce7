// SPDX-License-Identifier: BSD-3-Clause
// OptionSet: the options of one command, once for the parser and once for everything that tells of
// them: --help, completion and the manual.
#pragma once

#include <functional>
#include <string>
#include <vector>

// Its header takes longer to compile than a whole command does.
namespace CLI {
class App;
}  // namespace CLI

namespace glimmerhost {

struct OptionText {
  std::string group;                   // the title that help has it under
  std::string value;                   // what stands for its value: "FILE"; empty for a switch
  std::string help;                    // one sentence without its full stop, or several
  std::vector<std::string> choices{};  // the values that it may have, or what they begin with
  bool isListed = true;                // false for what this build can only refuse
};

// An option as it is told of.
struct ListedOption {
  std::string name;    // "--output"; of an argument its name alone, "INPUT"
  std::string letter;  // "-o", or empty
  OptionText text;
  bool required = false;
  bool repeated = false;  // may be given more than once

  bool IsArgument() const { return !name.starts_with("-"); }
};

class OptionSet {
 public:
  //   app  the parser's part for the command; must outlive this
  explicit OptionSet(CLI::App* app) : app_(app) {}

  // What each is bound to is filled in by parsing, and must live as long. A name may have a letter
  // before it: "-o,--output".
  void Argument(const std::string& name, std::string* value, const std::string& help);
  void Arguments(const std::string& name, std::vector<std::string>* values,
                 const std::string& help);
  void Value(const std::string& name, std::string* value, const OptionText& text);

  // One that is understood at once: the reader is given the text, and throws UsageError.
  void ReadValue(const std::string& name, const std::function<void(const std::string&)>& read,
                 const OptionText& text);
  void NeededValue(const std::string& name, std::string* value, const OptionText& text);
  void Values(const std::string& name, std::vector<std::string>* values, const OptionText& text);
  void Switch(const std::string& name, bool* value, const std::string& group,
              const std::string& help);

  // A switch that may be given a value behind an equals sign; without one it is "on".
  void Switch(const std::string& name, std::string* value, const std::string& group,
              const std::string& help);

  // In the order in which they were added.
  const std::vector<ListedOption>& All() const { return options_; }

  const CLI::App& Parser() const { return *app_; }

 private:
  void List(const std::string& name, const OptionText& text, bool required, bool repeated);

  CLI::App* app_;
  std::vector<ListedOption> options_;
};

}  // namespace glimmerhost

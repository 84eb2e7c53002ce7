// SPDX-License-Identifier: BSD-3-Clause
#include "library/host_message.h"

#include <cstdint>

#include "hostframe/interfaces/class_info.h"
#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/iqplugin.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/wide_text.h"

namespace lx {
namespace {

// Asked once; a host that throws is asked again at the next message.
const quantel::cPtr<qplugin::iQplugin>& MessageSink() {
  static const quantel::cPtr<qplugin::iQplugin> sink =
      quantel::gFactory->findService(quantel::cClassInfo<qplugin::iQplugin>().guid());
  return sink;
}

}  // namespace

void SendHostMessage(const char* text) {
  quantel::wstring wide;
  for (; *text != '\0'; ++text) {
    // NOLINTNEXTLINE(bugprone-signed-char-misuse): the sign is meant to go on
    const auto extended = static_cast<std::int16_t>(static_cast<signed char>(*text));
    wide.push_back(static_cast<char16_t>(extended));
  }
  if (const quantel::cPtr<qplugin::iQplugin>& sink = MessageSink()) {
    sink->message(wide);
  }
}

}  // namespace lx

// SPDX-License-Identifier: BSD-3-Clause
// Texts for the user, through the host's message sink.
#pragma once

namespace lx {

// Shows or logs a text. Bytes are widened with their sign, as char16_t(int16_t(byte)).
// The sink is asked of the factory at the first message and kept until the module is
// unloaded; a host that offers none gets no messages. Exceptions of the host pass.
void SendHostMessage(const char* text);

}  // namespace lx

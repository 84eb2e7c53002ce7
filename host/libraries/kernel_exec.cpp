// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/interfaces/factory.h"

namespace quantel {

cPtr<iFactory> gFactory;

}  // namespace quantel

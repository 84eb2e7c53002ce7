#include "hostframe/interfaces/factory.h"

namespace quantel {

cPtr<iFactory> gFactory;

}  // namespace quantel

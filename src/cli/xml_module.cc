#include "cli/xml_module.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace Orvane {

XmlReader loadXmlReader() {
  // Never closed: the libraries behind it don't bear being unloaded.
  void* const module = ::dlopen(kXmlModule, RTLD_LAZY | RTLD_LOCAL);
  void* const entry = module == nullptr ? nullptr : ::dlsym(module, kXmlModuleEntry);
  if (entry == nullptr) {
    const char* const reason = ::dlerror();
    throw std::runtime_error("cannot load the XML reader: " +
                             std::string(reason == nullptr ? kXmlModule : reason));
  }
  return reinterpret_cast<XmlReader>(entry);
}

}  // namespace Orvane

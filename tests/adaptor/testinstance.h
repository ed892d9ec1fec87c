#pragma once
// A stand-in for a tool instance on the adaptor's side: a name, and the
// master nodes it hands out when tags are written.

#include <string>

#include "sdk/cextendable.h"
#include "util/messagenode.h"
#include "util/xml/element.h"

namespace vuk::rgw::testing_support {

class TestInstance : public CExtendable, public util::MessageNode {
 public:
  explicit TestInstance(const std::string& instanceName) : util::MessageNode(instanceName) {}

  std::intptr_t Extension(std::int32_t id, void* data) override {
    if (id == extension::kMasterNode && data && !master.IsEmpty()) {
      static_cast<util::xml::Element*>(data)->AddChild(master);
    }
    return 0;
  }

  // What this instance adds to "masternodes"; empty adds nothing.
  util::xml::Element master;
};

}  // namespace vuk::rgw::testing_support

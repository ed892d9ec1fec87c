#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "tests/adaptor/adaptorcontract.h"

namespace vuk::rgw::testing_support {
namespace {

INSTANTIATE_TEST_SUITE_P(Standalone, AdaptorContract, testing::Values(AdaptorFactory([] {
                           return std::unique_ptr<core::AdaptorInterface>(
                               new adaptor::standalone::StandaloneAdaptorInterface());
                         })));

}  // namespace
}  // namespace vuk::rgw::testing_support

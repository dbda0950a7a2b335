#include "applicationenvironment.h"

namespace {

const auto* const environment =
    testing::AddGlobalTestEnvironment(new testing_support::RApplicationEnvironment);

} // namespace

#include "shell/Deployment.h"

namespace tarvix {

Deployment Deployment::ofThisBuild() { return {TARVIX_VERSION, TARVIX_ISSUE_TRACKER, TARVIX_SUPPORT_ADDRESS}; }

}  // namespace tarvix

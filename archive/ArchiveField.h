#pragma once

#include "archive/ArchiveObject.h"
#include "archive/ArchiveValue.h"

namespace Cmm::Archive {

// The leaf of that name right below `root`, the root of an instance, if its tag is `type`; else null, as for
// a null or empty name.
CCmmArchiveVarivant* FindField(ICmmArchiveObject* root, const char* name,
                               CCmmArchiveVarivant::ArchDataType type);

}  // namespace Cmm::Archive

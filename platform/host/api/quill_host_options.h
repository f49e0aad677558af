#pragma once

#include "quill_host_api_export.h"

// Switches the host was started with, for its plugins to read.
namespace QUILL_HOST_OPTIONS
{
// The "full configuration": plugins show every command they have, hidden ones
// included. Chosen on quill's command line (--full); off by default.
QUILL_HOST_API bool full_configuration();
// Set by the host at start-up, and by tests.
QUILL_HOST_API void set_full_configuration(bool full);
} // namespace QUILL_HOST_OPTIONS

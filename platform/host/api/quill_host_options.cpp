#include "quill_host_options.h"

namespace QUILL_HOST_OPTIONS
{
namespace
{
bool& full()
{
    static bool value = false;
    return value;
}
} // namespace

bool full_configuration()
{
    return full();
}

void set_full_configuration(bool value)
{
    full() = value;
}
} // namespace QUILL_HOST_OPTIONS

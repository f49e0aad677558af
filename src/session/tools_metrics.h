#pragma once

#include <QString>

// Usage metrics of the studio tools: each start and finish of a tool is
// counted, and logged at debug level.
namespace TOOLS_METRICS
{
void tool_started(const QString& tool_name);
void tool_finished(const QString& tool_name);
// How many times the tool was started and is still running, in this process.
int running_count(const QString& tool_name);
} // namespace TOOLS_METRICS

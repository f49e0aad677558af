#pragma once
// Owned by the version-control work: the depot client behind the workspace.
// Declared in full there; this placeholder keeps the umbrella header whole.
class P4_CONNECTION;

#pragma once
// Owned by the version-control work: revision helpers of the depot.
class KOR_DB_PERFORCE;

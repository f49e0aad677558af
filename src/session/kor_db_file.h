#pragma once
// Owned by the version-control work: shelving of the local database copy.
class KOR_DB_FILE;

#pragma once

#include "kor_metafield.h"

#include <functional>

class KOR_FIELD_SCHEMA;

// The key of a schema-change map: one metafield of one field. Ordered by the
// metafield first and the field pointer second.
struct METAFIELD_AND_SCHEMA
{
    METAFIELD_AND_SCHEMA() = default;
    METAFIELD_AND_SCHEMA(KOR_METAFIELD metafield_, KOR_FIELD_SCHEMA* field_schema_)
        : metafield(metafield_), field_schema(field_schema_)
    {
    }

    KOR_METAFIELD metafield = KMF_DEFAULT_VALUE;
    KOR_FIELD_SCHEMA* field_schema = nullptr;

    bool operator<(const METAFIELD_AND_SCHEMA& other) const
    {
        if (metafield != other.metafield)
            return metafield < other.metafield;
        return std::less<const KOR_FIELD_SCHEMA*>()(field_schema, other.field_schema);
    }
    bool operator==(const METAFIELD_AND_SCHEMA& other) const
    {
        return metafield == other.metafield && field_schema == other.field_schema;
    }
};

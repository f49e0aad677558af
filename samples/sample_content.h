#pragma once

#include "sample_context.h"
#include "sample_rows.h"

#include <QMap>
#include <QString>

class SAMPLE_CATALOGUE;

// The generated rows of every table of a catalogue, before anything is
// written. Generating also gives each row its uuid and modification time and
// each localised text its approval data, all drawn from the seed.
class SAMPLE_CONTENT
{
public:
    // False with the reason when a generator fails or writes a field its
    // table does not have.
    bool generate(QString& error, const SAMPLE_CATALOGUE& catalogue, quint64 seed, SAMPLE_SIZE size);

    const QMap<QString, SAMPLE_ROWS>& tables() const { return m_rows; }
    quint64 seed() const { return m_seed; }
    SAMPLE_SIZE size() const { return m_size; }
    const SAMPLE_ROWS& rows(const QString& table) const;
    int record_count() const;

private:
    void stamp(const SAMPLE_TABLE& table, SAMPLE_ROWS& rows, SAMPLE_RANDOM random) const;
    void cover_every_approval_state(const SAMPLE_CATALOGUE& catalogue);

    QMap<QString, SAMPLE_ROWS> m_rows;
    quint64 m_seed = 0;
    SAMPLE_SIZE m_size = SAMPLE_SIZE::NORMAL;
};

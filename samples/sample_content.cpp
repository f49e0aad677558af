#include "sample_content.h"

#include "sample_catalogue.h"

namespace
{
const QString REJECTED_MARKER = QStringLiteral("text_rejected: ");

// An earlier wording of a text, as it stood when it was last approved.
QString earlier_wording(const QString& text, SAMPLE_RANDOM& random)
{
    if (text.endsWith(QLatin1Char('.')))
        return text.left(text.size() - 1);
    static const QStringList tails = {QStringLiteral(" (old)"), QStringLiteral("s"),
                                      QStringLiteral(" Guard")};
    return text + random.pick(tails);
}
} // namespace

bool SAMPLE_CONTENT::generate(QString& error, const SAMPLE_CATALOGUE& catalogue, quint64 seed,
                              SAMPLE_SIZE size)
{
    m_rows.clear();
    m_seed = seed;
    m_size = size;
    const SAMPLE_RANDOM root(seed);
    bool covered = false;
    for (const SAMPLE_TABLE& table : catalogue.tables())
    {
        // Tables that describe the others (translations of their texts) must
        // see the approval states as they will be written.
        if (table.describes_others() && !covered)
        {
            cover_every_approval_state(catalogue);
            covered = true;
        }
        SAMPLE_ROWS rows(&table);
        SAMPLE_CONTEXT context(catalogue, m_rows, root.fork(table.name()), size);
        if (table.generator())
            table.generator()(context, rows);
        for (const SAMPLE_ROW& row : rows)
        {
            for (auto it = row.values.constBegin(); it != row.values.constEnd(); ++it)
            {
                if (!table.field(it.key()))
                {
                    error = QStringLiteral("The generator of table '%1' writes the unknown field '%2'")
                                .arg(table.name(), it.key());
                    return false;
                }
            }
        }
        stamp(table, rows, root.fork(table.name() + QStringLiteral("/stamp")));
        m_rows.insert(table.name(), rows);
    }
    if (!covered)
        cover_every_approval_state(catalogue);
    return true;
}

const SAMPLE_ROWS& SAMPLE_CONTENT::rows(const QString& table) const
{
    static const SAMPLE_ROWS none;
    const auto it = m_rows.constFind(table);
    return it == m_rows.constEnd() ? none : it.value();
}

int SAMPLE_CONTENT::record_count() const
{
    int count = 0;
    for (const SAMPLE_ROWS& rows : m_rows)
        count += rows.size();
    return count;
}

void SAMPLE_CONTENT::stamp(const SAMPLE_TABLE& table, SAMPLE_ROWS& rows, SAMPLE_RANDOM random) const
{
    const QStringList localised = table.localised_fields();
    const qint64 today = SAMPLE_CONTEXT::today_msecs();
    const QStringList team = SAMPLE_CONTEXT::team();
    for (SAMPLE_ROW& row : rows)
    {
        row.uuid = random.uuid();
        row.modified_msecs = today - qint64(random.range(1, 700 * 24 * 3600)) * 1000;
        for (const QString& name : localised)
        {
            const QString text = row.text(name);
            if (text.isEmpty())
                continue;
            SAMPLE_APPROVAL approval;
            approval.last_edit_user = random.chance(0.6) ? table.designer() : random.pick(team);
            const double roll = random.real();
            if (roll < 0.78)
            {
                approval.state = 1;
                approval.last_approved_text = text;
                approval.requires_recording = table.field(name)->for_vo && random.chance(0.2);
            }
            else if (roll < 0.92)
            {
                approval.state = 0;
                approval.requires_translation = random.chance(0.5);
                if (random.chance(0.5))
                    approval.last_approved_text = earlier_wording(text, random);
            }
            else if (roll < 0.97)
            {
                approval.state = 2;
            }
            else
            {
                approval.state = 1;
                row.set(name, REJECTED_MARKER + text);
            }
            row.approvals.insert(name, approval);
        }
    }
}

void SAMPLE_CONTENT::cover_every_approval_state(const SAMPLE_CATALOGUE& catalogue)
{
    // Chance alone leaves a small project without some state; the text
    // approval window must have something to show in each of its modes.
    bool seen[4] = {false, false, false, false};
    for (const SAMPLE_ROWS& rows : m_rows)
        for (const SAMPLE_ROW& row : rows)
            for (auto it = row.approvals.constBegin(); it != row.approvals.constEnd(); ++it)
            {
                const bool rejected = row.text(it.key()).startsWith(REJECTED_MARKER);
                seen[rejected ? 3 : it->state] = true;
            }
    for (const SAMPLE_TABLE& table : catalogue.tables())
    {
        const QStringList localised = table.localised_fields();
        auto it = m_rows.find(table.name());
        if (localised.isEmpty() || it == m_rows.end() || it->size() < 4)
            continue;
        const QString field = localised.first();
        SAMPLE_ROWS& rows = *it;
        for (int state = 0; state < 4; ++state)
        {
            if (seen[state])
                continue;
            SAMPLE_ROW& row = rows[state];
            QString text = row.text(field);
            if (text.startsWith(REJECTED_MARKER))
                text = text.mid(REJECTED_MARKER.size());
            SAMPLE_APPROVAL& approval = row.approvals[field];
            approval.state = state == 3 ? 1 : state;
            approval.last_approved_text = state == 1 ? text : QString();
            row.set(field, state == 3 ? REJECTED_MARKER + text : text);
            seen[state] = true;
        }
        break;
    }
}

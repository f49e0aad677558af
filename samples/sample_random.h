#pragma once

#include <QString>
#include <QStringList>
#include <QUuid>
#include <QtGlobal>

// The one source of chance of the sample generator. Everything it makes is
// drawn from here, so one seed gives the same project on every machine:
// no std:: distributions (their results differ between standard libraries),
// no hash-ordered containers, no clock.
//
// Each table draws from a stream of its own (`fork`), so adding a table to the
// catalogue leaves the content of every other table as it was.
class SAMPLE_RANDOM
{
public:
    explicit SAMPLE_RANDOM(quint64 seed);

    // A stream of its own, derived from this one's seed and a name; it does
    // not advance this stream.
    SAMPLE_RANDOM fork(const QString& name) const;

    quint64 next();
    // Uniform in [low, high]; high below low answers low.
    int range(int low, int high);
    // Uniform in [0, 1).
    double real();
    double real(double low, double high);
    // True with the given probability.
    bool chance(double probability);
    // A uniformly chosen element; an empty list answers an empty string.
    const QString& pick(const QStringList& items);
    int index(int count);
    // A version-4 uuid made of drawn bits.
    QUuid uuid();
    // Fisher-Yates: the first `count` elements become a uniform sample.
    QStringList sample(QStringList items, int count);

    quint64 seed() const { return m_seed; }

private:
    quint64 m_seed;
    quint64 m_state;
};

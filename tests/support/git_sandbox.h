#pragma once

// Depots for tests: a bare git repository in a temporary folder and clones
// of it, driven with plain git so that what the depot layer does is checked
// against git itself.

#include "test_folder.h"

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

class GIT_SANDBOX
{
public:
    // Whether git can be run here at all; tests skip without it.
    static bool available();

    bool valid() const { return folder.is_valid(); }
    QString path(const QString& name) const { return folder.path() + QLatin1Char('/') + name; }
    QString depot() const { return path(QStringLiteral("depot.git")); }
    QString seed() const { return path(QStringLiteral("seed")); }

    // Runs git in dir as the given user; false when git fails.
    static bool git(const QString& dir, const QStringList& arguments, QString* output = nullptr,
                    const QString& user = QStringLiteral("seed"));

    // A bare depot and the "seed" clone that fills it (publish_seed).
    bool create_empty_depot();
    // Commits everything in the seed clone and pushes it: the next change.
    bool publish_seed(const QString& message);
    // A bare depot whose first commit holds the given files (change 1).
    bool create_depot(const QMap<QString, QByteArray>& files);
    // A new workspace: a clone of the depot, empty on failure.
    QString clone(const QString& name);
    // A change made outside the depot layer, as another tool would push it.
    bool push_from_seed(const QString& file, const QByteArray& content, const QString& message);

    // Writes the file (its folder made as needed), failing the test when it cannot.
    static void write(const QString& file, const QByteArray& content);
    // The file's bytes, or "<missing>".
    static QByteArray read(const QString& file);

private:
    TEST_FOLDER folder;
};

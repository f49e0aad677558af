#pragma once

#include <QRegularExpression>
#include <QString>
#include <QVector>

// A file argument of a depot command, in the forms the depot client takes:
// an absolute local path, a path relative to the working directory, or a
// depot path "//..." that is relative to the workspace root; with the
// wildcards "..." (any depth) and "*" (within one folder); and an optional
// revision: "#n", "#have", "#head", "#none", "@n" (a changelist number).
class VCS_FILE_ARGUMENT
{
public:
    enum REVISION_KIND
    {
        REVISION_NONE_GIVEN, // no revision: the command's default applies
        REVISION_HAVE,       // #have
        REVISION_HEAD,       // #head
        REVISION_DELETED,    // #none or #0: not on the client
        REVISION_FILE,       // #n, the n-th revision of each file
        REVISION_CHANGE      // @n, the files as of changelist n
    };

    // Parses text against a workspace root and the directory relative paths
    // start from. False with a message for a path outside the workspace or a
    // revision this layer does not know.
    bool parse(QString& error, const QString& text, const QString& root, const QString& working_directory);

    const QString& text() const { return original; }
    // Root-relative path pattern with "/" separators; empty means the whole workspace.
    const QString& relative_pattern() const { return pattern; }
    bool has_wildcards() const { return wildcards; }
    bool is_whole_workspace() const;
    // The folder below which every match lies (root-relative, may be empty).
    QString fixed_directory() const;
    // The folder a listing starts from: the fixed directory of a wildcard, else the path itself.
    QString search_folder() const { return wildcards ? fixed_directory() : pattern; }
    bool matches(const QString& relative_path) const;
    static bool any_matches(const QVector<VCS_FILE_ARGUMENT>& file_args, const QString& relative_path);

    REVISION_KIND revision_kind() const { return kind; }
    int revision_number() const { return number; }
    // The revision part as written ("#3", "@120", "#have"), or empty.
    QString revision_text() const;
    // The path part in depot syntax: "//" + pattern.
    QString depot_syntax() const { return QStringLiteral("//") + pattern; }

    static QString clean_path(const QString& path);

private:
    QString original;
    QString pattern;
    bool wildcards = false;
    QRegularExpression expression;
    REVISION_KIND kind = REVISION_NONE_GIVEN;
    int number = 0;
};

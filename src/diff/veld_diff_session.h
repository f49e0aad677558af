#pragma once

#include <QString>

class KOR_XML_QUERY_INTERFACE;
class PROGRESS_CALLBACK;

// What a database comparison needs of the session and of the user. The
// window layer answers it from the session (VELD_DATA) and the prompt seam;
// the comparison itself stays below the widgets.
class VELD_DIFF_SESSION
{
public:
    virtual ~VELD_DIFF_SESSION() = default;

    virtual bool is_connected() const = 0;
    // Connects on the session's present database path without a merge;
    // false when that failed, which the session reports itself.
    virtual bool connect_without_merge() = 0;
    // The path the session connects to.
    virtual QString database_path() const = 0;
    // Disconnects; the error text, empty on success.
    virtual QString disconnect() = 0;
    // The session's query interface; null when it has none.
    virtual KOR_XML_QUERY_INTERFACE* query_interface() const = 0;
    // Handed to the query interfaces the comparison opens.
    virtual PROGRESS_CALLBACK* progress_callback() const = 0;

    // A question with Yes and No, No by default, no parent: true for Yes.
    virtual bool ask(const QString& title, const QString& text) = 0;
    // A warning box with no parent.
    virtual void warn(const QString& title, const QString& text) = 0;
};

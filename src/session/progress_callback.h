#pragma once

// The sink through which the engine reports progress and messages. The
// application implements it once (the session); engine operations are handed a
// pointer to it, or null when they must stay quiet.
class PROGRESS_CALLBACK
{
public:
    enum SEVERITY
    {
        SEVERITY_INFORMATION = 0,
        SEVERITY_WARNING = 1,
        SEVERITY_ERROR = 2
    };

    virtual void set_maximum_progress(int maximum) = 0;
    // Kept for the engine's side of the contract; the application does nothing with it.
    virtual void set_progress_text(const char* text) = 0;
    virtual void add_progress(int progress) = 0;
    // A yes/no question from the engine; the application always answers false.
    virtual bool query(const char* text) = 0;
    // Kept for the engine's side of the contract; the application does nothing with it.
    virtual void reset_progress() = 0;
    virtual void report(const char* text, int severity) = 0;
    virtual ~PROGRESS_CALLBACK() = default;
};

#pragma once

#include <korvane/korvane_export.h>

#include <QString>

class QPixmap;

// The host's toolbar and list icons, looked up by name: "help24", "projectopen24", "down_ok",
// "down_ko" and "delete24". Use it as any QPixmap: from the GUI thread, while a QGuiApplication
// exists (Qt aborts on a pixmap made before one).
class KORVANE_EXPORT IconXPMHandler
{
public:
    IconXPMHandler();
    ~IconXPMHandler();
    IconXPMHandler(const IconXPMHandler&) = delete;
    IconXPMHandler& operator=(const IconXPMHandler&) = delete;

    // Never returns null. The pixmap suits the application's palette at the call (a light-on-dark
    // drawing when its Base is darker than its Text) and its screens' pixel density (twice the
    // pixels above ratio 1). It belongs to the handler, and a name gives the same pointer for the
    // handler's whole life while palette and density stay, so callers may keep it. An unknown name gives a null pixmap
    // (isNull()). The pixmaps are let go when the application object is destroyed, leaving the
    // pointers valid but null, and are loaded again on the next call under a new application.
    QPixmap* getPixmap(const QString& name);

private:
    struct Private;
    // A plain pointer: a smart pointer member would be a template the DLL interface does not export.
    Private* d;
};

// The process-wide handler; valid from load time on. It creates no pixmap before the first call.
extern KORVANE_EXPORT IconXPMHandler* iconHandler;

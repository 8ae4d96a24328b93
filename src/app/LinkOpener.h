#pragma once

#include "UiServices.h"

#include <QString>
#include <functional>

// Opening a link with the program the desktop has registered for its
// protocol. The desktop's handler for "mailto" is the .desktop entry that
// `xdg-mime query default x-scheme-handler/mailto` names; its Exec line plays
// the part of the registered command.

// The registered command line for Protocol, "" when there is none. The lookup
// is a seam: tests give their own.
using HandlerLookup = std::function<QString(const QString& Protocol)>;
QString DesktopHandlerCommand(const QString& Protocol);

// The message shown when no program is registered; "links." follows the
// protocol name without a space, as it always has.
QString NoHandlerMessage(const QString& Protocol);

// Command with %NAME% environment references expanded (a name runs to the
// next "%"; unset or empty variables are left as written), then "%1" (or the
// desktop's %u/%U) replaced by Link, or Link appended after one space.
QString BuildLinkCommand(const QString& Command, const QString& Link);

// Splits a command line into program and arguments, honouring double quotes.
QStringList SplitCommandLine(const QString& command);

// Looks up the handler, shows the designed message when there is none, and
// otherwise starts it without waiting.
void OpenLink(const QString& Protocol, const QString& Link, UiServices& ui,
              const HandlerLookup& lookup = DesktopHandlerCommand);

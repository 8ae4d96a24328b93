// Only the core's sources see this file, ahead of Qt's own.
#error "The core never uses QtWidgets: keep widgets in the window's tab classes."

#pragma once

#include <QString>

// "v" major "." minor " build" " " revision: version 2.1, revision 7 reads
// "v2.1 build 7". The lone space before the revision is part of the text.
QString VersionString();

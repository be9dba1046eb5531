#pragma once

#include <QString>

/// The folder of the user's documents, in which files are looked for and put at first; their home where there
/// is no such folder, which a dialog would take for the name of a file.
QString documentsFolder();

#pragma once

#include <QString>
#include <QStringList>

/// The prepared records that the start window offers, as they lie beside the program, and their copy in the
/// application folder. Nothing here touches the user's own store.
namespace SampleStore {

/// Where the prepared store and its pictures lie: "share/morvane/sample" beside the folder of the program.
QString folder();
/// Another place for them; an empty text for the usual one.
void setFolder(const QString &path);

/// Replaces a store by the prepared one, with what SQLite keeps beside it. At any moment the file at the path
/// is a whole one or none; what a former attempt left behind goes. A prepared store that is missing or
/// damaged leaves no file at the path, with a line in the log. No context may have the store open. \return
/// whether the prepared store is in its place.
bool putInPlace(const QString &path);

/// The paths of the prepared pictures; none if they are missing.
QStringList pictures();

} // namespace SampleStore

#pragma once

#include <QString>

#include <memory>

class ContactBackend;

/// The address books that the desktop keeps by a daemon. What is needed to talk to it lies in a library of
/// its own, which is loaded when they are first asked for.
namespace DesktopContacts {

/// \param libraryPath without the suffix. Null, with a line in the log, without the library.
std::shared_ptr<ContactBackend> backend(const QString &libraryPath);

} // namespace DesktopContacts

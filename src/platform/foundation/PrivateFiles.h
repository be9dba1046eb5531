#pragma once

#include <QString>

/// Files and folders that no other account of the computer may read.
namespace PrivateFiles {

/// Makes a folder, and those above it that are missing, for their owner only (0700). Folders that are there
/// stay as they are. False if it is not there afterwards.
bool makeFolder(const QString &path);

/// Makes an empty file for its owner only (0600) unless something of that name is there.
void makeFile(const QString &path);

/// Takes away what other accounts may do with a file or a folder. A link stays as it is, and so does what it
/// leads to. False if that is not possible.
bool narrow(const QString &path);

/// Narrows a folder and, where others could look into it until now, all that is in it. Links are not
/// followed: what they lead to may be meant for others.
void narrowTree(const QString &folder);

} // namespace PrivateFiles

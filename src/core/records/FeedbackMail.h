#pragma once

#include <QString>

/// The mail in which a user tells what is on the mind: who made what run is told below the words.
namespace FeedbackMail {

/// The draft as a "mailto:" address, to the `supportAddress` of the configuration, or to nobody without one.
QString url();

/// The system and its kernel; read once.
QString systemVersion();
/// The name of a model with its identifier, such as "iMac 2017 (iMac18,1)"; "unknown (…)" for any other.
QString deviceModelString(const QString &identifier);
/// The same for this machine.
QString deviceModelString();
/// What the program was built from, in short.
QString revision();

} // namespace FeedbackMail

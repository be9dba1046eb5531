#pragma once

/// How a save of a working copy ended: the rules or the store refused it, with a message; the user gave it up
/// when asked how far it reaches; or the row has the values.
enum class SaveEnd { Refused, GivenUp, Saved };

#pragma once

/// What a form lacks when it is to be saved: the focus goes there, and nothing is said.
enum class MissingField { None, FirstName, Title };

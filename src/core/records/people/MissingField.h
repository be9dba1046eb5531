#pragma once

/// What a form lacks when it is to be saved: the focus goes there, and nothing is said.
enum class MissingField {
    None,
    FirstName,
    Title,
    /// Nothing; but the store took no changes, which the user was told. The form stays open with what was
    /// typed, and can be saved again.
    Store
};

#pragma once

/// What a screen is for. All but notes and what one waits for have a row in the sidebar.
enum class SidebarItem {
    Home,
    Projects,
    Contacts,
    Tasks,
    Calendar,
    People,
    Companies,
    ContactGroup,
    Inbox,
    Today,
    Scheduled,
    Someday,
    Categories,
    Delegated,
    NotDone,
    Done,
    Notes,
    WaitingFor,
};

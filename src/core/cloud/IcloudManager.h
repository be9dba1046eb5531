#pragma once

/// The state of the cloud that replicates the user's records between devices.
class IcloudManager
{
public:
    IcloudManager() = delete;

    /// Whether the folder that the cloud shares can be reached. Records stay on this machine: there is none.
    static bool connectIcloud() { return false; }
};

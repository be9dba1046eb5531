#pragma once

#include "objectstore/ManagedObjectContext.h"

/// The context of the store in use, which all records live in.
ManagedObjectContext &mainContext();

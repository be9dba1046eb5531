#pragma once

#include "objectstore/ManagedObjectModel.h"

/// The data model: every entity, its columns, relationships and indexes. Made once.
const ManagedObjectModel &organiserModel();

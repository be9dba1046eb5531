#pragma once

#include "filters/ListFilter.h"

/// The filter of the projects.
class FilterProject : public ListFilter
{
public:
    FilterProject();
};

#include "contacts/CNContact.h"

bool CNPostalAddress::isEmpty() const
{
    return street.isEmpty() && extended.isEmpty() && city.isEmpty() && state.isEmpty() &&
           postalCode.isEmpty() && country.isEmpty();
}

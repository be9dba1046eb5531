#pragma once

#include "store/entities/Entities.h"

#include <QString>

#include <optional>

// What hangs on a contact or a company, as windows hold it before it is stored. Links hold the rows; null for
// none.

class MVAddress
{
public:
    QString city;
    QString state;
    QString street1;
    QString street2;
    QString zip;
    std::shared_ptr<EntityAddressType> addressType;
    ContactPtr contact;
    QString country;
};

class MVEmail
{
public:
    QString mail;
    ContactPtr contact;
    CompanyPtr company;
    std::shared_ptr<EntityEmailType> type;
};

class MVPhone
{
public:
    QString number;
    ContactPtr contact;
    std::shared_ptr<EntityPhoneType> type;
};

class MVURL
{
public:
    QString url;
    CompanyPtr company;
    ContactPtr contact;
    std::shared_ptr<EntityURLType> type;
};

class MVLocation
{
public:
    std::optional<double> latitude;
    std::optional<double> longitude;
    QString title;
};

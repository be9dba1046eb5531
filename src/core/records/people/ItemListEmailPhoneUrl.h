#pragma once

#include "store/entities/Entities.h"

#include <QString>

#include <vector>

/// A row of a form that shows one telephone number, mail address or web address: its text as the user typed
/// it, where a click on it leads, its type, and the stored row that it stands for.
class ItemListEmailPhoneUrl
{
public:
    using PhonePtr = std::shared_ptr<EntityPhone>;
    using EmailPtr = std::shared_ptr<EntityEmail>;
    using UrlPtr = std::shared_ptr<EntityURL>;
    using PhoneTypes = std::vector<std::shared_ptr<EntityPhoneType>>;
    using EmailTypes = std::vector<std::shared_ptr<EntityEmailType>>;
    using UrlTypes = std::vector<std::shared_ptr<EntityURLType>>;
    using Rows = std::vector<ItemListEmailPhoneUrl>;

    /// A form row for a stored row, or a blank one for null, whose type is the first that no row of the form
    /// has.
    static ItemListEmailPhoneUrl initPhoneItem(const PhonePtr &phone, const PhoneTypes &typesPopupItems,
                                               const Rows &allComponents, bool editable);
    static ItemListEmailPhoneUrl initEmailItem(const EmailPtr &email, const EmailTypes &typesPopupItems,
                                               const Rows &allComponents, bool editable);
    static ItemListEmailPhoneUrl initURLItem(const UrlPtr &url, const UrlTypes &typesPopupItems,
                                             const Rows &allComponents, bool editable);

    /// The first type that no row uses, or null if all are used.
    static std::shared_ptr<EntityPhoneType> typeNoSelectPhone(const PhoneTypes &types,
                                                              const Rows &allPhoneComponents);
    static std::shared_ptr<EntityEmailType> typeNoSelectEmail(const EmailTypes &types,
                                                              const Rows &allEmailComponents);
    static std::shared_ptr<EntityURLType> typeNoSelectURL(const UrlTypes &types,
                                                          const Rows &allURLComponents);

    // Shows a value and derives its link; an empty one shows nothing and has no link.
    /// "tel:" and the digits, with the sign of an international number before them.
    void setPhoneNumber(const QString &number);
    /// "mailto:" and the value.
    void setEmailString(const QString &email);
    /// The address as it is; one that names no scheme gets "https:". Percent-encoded where it has to be.
    void setURLString(const QString &url);

    // Binds the row that this one stands for, and shows what it holds.
    void setEntityPhone(const PhonePtr &phone);
    void setEntityEmail(const EmailPtr &email);
    void setEntityUrl(const UrlPtr &url);

    const QString &text() const { return shownText; }
    const QString &link() const { return linkTarget; }
    bool isEmpty() const { return shownText.isEmpty(); }
    bool isEditable() const { return editable; }
    /// The stored row; null for one that is new.
    const ObjectPtr &entity() const { return boundRow; }
    const ObjectPtr &type() const { return chosenType; }
    void setType(const ObjectPtr &type) { chosenType = type; }

private:
    QString shownText;
    QString linkTarget;
    ObjectPtr boundRow;
    ObjectPtr chosenType;
    bool editable = false;
};

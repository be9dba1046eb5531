#pragma once

#include <QWidget>

#include <vector>

class ContactForm;
class QLabel;

/// The lines of a new contact's form that say who of the typed name is in the address books. A press takes
/// over what the form lacks; one on somebody who is here already shows them.
class OffersField : public QWidget
{
    Q_OBJECT
public:
    explicit OffersField(ContactForm &form, QWidget *parent = nullptr);

    void showOffers();

private:
    void press(std::size_t place);

    ContactForm &form;
    /// One for each offer that there can be, so that the keys meet them where they stand.
    std::vector<QLabel *> lines;
};

// The Security tab of the driver family, and the masking of its password
// fields.  See securitytab.h.
#include "dsn/dialog/securitytab.h"

#include <Xm/ComboBox.h>
#include <Xm/Form.h>
#include <Xm/Frame.h>
#include <Xm/Label.h>
#include <Xm/Text.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

#include <initializer_list>

#include <cstring>

#include "dsn/backend_impl.h"
#include "dsn/dialog/builders.h"
#include "dsn/dialog/combo_impl.h"
#include "dsn/dialog/tabs_impl.h"
#include "dsn/dialog/widgets_impl.h"

char* keystorePasssword = nullptr;
char* keyPasssword = nullptr;

Widget frmSecurity, btnSecurity, btnSectabHelp;
Widget frameAuthentication, formAuthentication, lbUserNameSectab, txtUserNameSectab, lbAuthMethodSectab,
    cbAuthMethodSectab, lbServicePrincNameSectab, txtServicePrnNameSectab, lbGssLibSectab, txtGssLibSectab;
Widget frameEncryption, formEncryption, lbEncryptMethodSectab, cbEncryptMethodSectab, tgValidServerCertSectab,
    lbTrustStoreSectab, txtTrustStoreSectab, lbTrustStorePwdSectab, txtTrustStorePwdSecTab, lbHostNameCertSectab,
    txtHostNameCertSectab;
Widget lbKeyStroreSectab, txtKeyStoreSectab, lbKeyStorePassSectab, txtKeyStorePassSectab, lbKeyPasswordSectab,
    txtKeyPasswordSectab;

namespace {

// Layout inside the two frames' forms.
constexpr int LABEL_LEFT = 5, LABEL_RIGHT = 170;
constexpr int CONTROL_LEFT = 170, CONTROL_RIGHT = 375, GSS_LEFT = 175;
constexpr int ROW_HEIGHT = 25, ROW_STEP = 30;
constexpr int LIST_HEIGHT = 30, LIST_STEP = 35;

struct Variant {
    const char* const* authItems;
    int authCount;
    const char* authDefault;
    const char* const* encryptItems;
    int encryptCount;
    bool keyStore;
    bool servicePrincipal;
};

const char* const auth0[] = {"0 - No Encryption", "1 - Encrypt Password", "2 - Encrypt UserID and Password",
                             "3 - Client", "4 - Kerberos"};
const char* const auth1[] = {"0 - No Encryption", "1 - Encrypt Password", "4 - Kerberos"};
const char* const auth2[] = {"1 - Encrypt Password", "3 - Client", "4 - Kerberos", "5 - Kerberos with UID & PWD"};
const char* const encrypt0[] = {"0 - No Encryption", "1 - SSL Auto", "2 - Database Encryption"};
const char* const encrypt1[] = {"0 - No Encryption", "1 - SSL Auto"};
const char* const encrypt2[] = {"0 - No Encryption", "1 - SSL Auto", "3 - SSL3", "4 - SSL2", "5 - TLS1"};

const Variant variants[] = {
    {auth0, 5, "0 - No Encryption", encrypt0, 3, true, false},
    {auth1, 3, "0 - No Encryption", encrypt1, 2, false, true},
    {auth2, 4, "1 - Encrypt Password", encrypt2, 5, true, false},
    {nullptr, 0, nullptr, encrypt1, 2, true, false},  // no authentication items
};

// The help button's book and topic.  One dialog runs in a process, so one
// pair in static storage serves it (and there is nothing left to free).
struct HelpPair {
    unsigned char* book;
    unsigned char* topic;
};
HelpPair securityHelp;

void btnSectabHelp_Clicked(Widget, XtPointer client, XtPointer)
{
    const auto* pair = static_cast<const HelpPair*>(client);
    if (pair != nullptr && pair->book != nullptr && pair->topic != nullptr)
        requestHelp(pair->book, pair->topic);
}

void setSensitive(Widget w, bool on)
{
    if (w != nullptr)
        XtSetSensitive(w, on);
}

// A labelled row of a frame's form: label and control share top and bottom.
void placeRow(Widget label, Widget control, int top, int bottom, int controlLeft)
{
    setControlRect(label, top, top + ROW_HEIGHT, LABEL_LEFT, LABEL_RIGHT);
    setControlRect(control, top, bottom, controlLeft, CONTROL_RIGHT);
}

Widget passwordField(Widget parent, const char* name, char** clearTextSlot)
{
    Widget field = createTextField(parent, name, nullptr);
    if (field != nullptr)
        XtAddCallback(field, XmNmodifyVerifyCallback, checkPassword, clearTextSlot);
    return field;
}

// A frame with a catalog title and a form inside it.
Widget framedForm(Widget parent, const char* frameName, const char* formName, int titleId, Widget* frame)
{
    *frame = XmCreateFrame(parent, const_cast<char*>(frameName), nullptr, 0);
    if (*frame == nullptr)
        return nullptr;
    char text[ZU_LABEL_BUFFER];
    getMsgByID(titleId, text, sizeof text);
    Arg args[1];
    XtSetArg(args[0], XmNchildType, XmFRAME_TITLE_CHILD);
    Widget title = XmCreateLabel(*frame, text, args, 1);
    if (title != nullptr)
        XtManageChild(title);
    return XmCreateForm(*frame, const_cast<char*>(formName), nullptr, 0);
}

}  // namespace

Widget createSecurityTab(Widget parent, short variantNumber, unsigned char* helpBook, unsigned char* helpTopic)
{
    const Variant& variant = variants[variantNumber >= 0 && variantNumber <= 3 ? variantNumber : 1];
    const int offset = variantNumber == 2 ? 0 : 60;

    // A second dialog in the process must not see the last one's widgets.
    for (Widget* w : {&txtServicePrnNameSectab, &lbServicePrincNameSectab, &lbKeyStroreSectab, &txtKeyStoreSectab,
                      &lbKeyStorePassSectab, &txtKeyStorePassSectab, &lbKeyPasswordSectab, &txtKeyPasswordSectab})
        *w = nullptr;

    Widget tab = createTabPage(parent, "formSecurityTab");
    if (!widgetMade(tab))
        return nullptr;
    TabChildren tabChildren;

    securityHelp = {helpBook, helpTopic};
    btnSectabHelp = tabChildren.add(createNamedButton(tab, "btnSectabHelp", 7311));
    if (!widgetMade(btnSectabHelp))
        return tab;
    setControlRect(btnSectabHelp, 5, 30, 310 + offset, 390 + offset);
    XtAddCallback(btnSectabHelp, XmNactivateCallback, btnSectabHelp_Clicked, &securityHelp);

    // Authentication: user name, method, service principal (variant 1), GSS
    // library, each row under the last with a running top.
    formAuthentication = framedForm(tab, "frameAuthentication", "formAuthentication", 7330, &frameAuthentication);
    if (!widgetMade(frameAuthentication) || !widgetMade(formAuthentication))
        return tab;
    tabChildren.add(frameAuthentication);
    TabChildren auth;
    int t = 0;
    lbUserNameSectab = auth.add(createLabel(formAuthentication, 7328));
    txtUserNameSectab = auth.add(createTextField(formAuthentication, "txtUserNameSectab", nullptr));
    if (!widgetMade(lbUserNameSectab) || !widgetMade(txtUserNameSectab))
        return tab;
    placeRow(lbUserNameSectab, txtUserNameSectab, t, t + ROW_HEIGHT, CONTROL_LEFT);
    t += ROW_STEP;

    lbAuthMethodSectab = auth.add(createLabel(formAuthentication, 7329));
    cbAuthMethodSectab = auth.add(variant.authCount > 0 ? createDropDownList(formAuthentication, "cbAuthMethodSectab",
                                                                             variant.authItems, variant.authCount,
                                                                             variant.authDefault)
                                                        : nullptr);
    if (!widgetMade(lbAuthMethodSectab))
        return tab;
    if (cbAuthMethodSectab != nullptr) {
        placeRow(lbAuthMethodSectab, cbAuthMethodSectab, t, t + LIST_HEIGHT, CONTROL_LEFT);
        XtAddCallback(cbAuthMethodSectab, XmNselectionCallback, authMethodChanged, nullptr);
    }
    t += LIST_STEP;

    if (variant.servicePrincipal) {
        lbServicePrincNameSectab = auth.add(createLabel(formAuthentication, 7317));
        txtServicePrnNameSectab = auth.add(createTextField(formAuthentication, "txtServicePrnNameSectab", nullptr));
        if (!widgetMade(lbServicePrincNameSectab) || !widgetMade(txtServicePrnNameSectab))
            return tab;
        placeRow(lbServicePrincNameSectab, txtServicePrnNameSectab, t, t + ROW_HEIGHT, CONTROL_LEFT);
        t += ROW_STEP;
    }

    lbGssLibSectab = auth.add(createLabel(formAuthentication, 7318));
    txtGssLibSectab = auth.add(createTextField(formAuthentication, "txtGssLibSectab", "native"));
    if (!widgetMade(lbGssLibSectab) || !widgetMade(txtGssLibSectab))
        return tab;
    placeRow(lbGssLibSectab, txtGssLibSectab, t, t + ROW_HEIGHT, GSS_LEFT);
    t += ROW_STEP;
    auth.manage();
    XtManageChild(formAuthentication);
    setControlRect(frameAuthentication, 30, t + 50, 5, 390 + offset);

    // Encryption: method, validation, trust store and its password, the key
    // store rows where the variant has them, host name in the certificate.
    formEncryption = framedForm(tab, "frameEncryption", "formEncryption", 7319, &frameEncryption);
    if (!widgetMade(frameEncryption) || !widgetMade(formEncryption))
        return tab;
    tabChildren.add(frameEncryption);
    TabChildren enc;
    lbEncryptMethodSectab = enc.add(createLabel(formEncryption, 7320));
    cbEncryptMethodSectab = enc.add(createDropDownList(formEncryption, "cbEncryptMethodSectab", variant.encryptItems,
                                                       variant.encryptCount, "0 - No Encryption"));
    tgValidServerCertSectab = enc.add(createToggleButton(formEncryption, 7321, True));
    lbTrustStoreSectab = enc.add(createLabel(formEncryption, 7322));
    txtTrustStoreSectab = enc.add(createTextField(formEncryption, "txtTrustStoreSectab", nullptr));
    lbTrustStorePwdSectab = enc.add(createLabel(formEncryption, 7323));
    txtTrustStorePwdSecTab = enc.add(passwordField(formEncryption, "txtTrustStorePwdSecTab", &truststorePasssword));
    for (Widget w : {lbEncryptMethodSectab, cbEncryptMethodSectab, tgValidServerCertSectab, lbTrustStoreSectab,
                     txtTrustStoreSectab, lbTrustStorePwdSectab, txtTrustStorePwdSecTab})
        if (!widgetMade(w))
            return tab;
    placeRow(lbEncryptMethodSectab, cbEncryptMethodSectab, 0, LIST_HEIGHT, CONTROL_LEFT);
    XtAddCallback(cbEncryptMethodSectab, XmNselectionCallback, encryptMethodChanged, nullptr);
    setControlRect(tgValidServerCertSectab, 30, 55, LABEL_LEFT, CONTROL_RIGHT);
    placeRow(lbTrustStoreSectab, txtTrustStoreSectab, 55, 80, CONTROL_LEFT);
    placeRow(lbTrustStorePwdSectab, txtTrustStorePwdSecTab, 85, 110, CONTROL_LEFT);

    int h = 115;
    if (variant.keyStore) {
        lbKeyStroreSectab = enc.add(createLabel(formEncryption, 7325));
        txtKeyStoreSectab = enc.add(createTextField(formEncryption, "txtKeyStoreSectab", nullptr));
        lbKeyStorePassSectab = enc.add(createLabel(formEncryption, 7326));
        txtKeyStorePassSectab = enc.add(passwordField(formEncryption, "txtKeyStorePassSectab", &keystorePasssword));
        lbKeyPasswordSectab = enc.add(createLabel(formEncryption, 7327));
        txtKeyPasswordSectab = enc.add(passwordField(formEncryption, "txtKeyPasswordSectab", &keyPasssword));
        for (Widget w : {lbKeyStroreSectab, txtKeyStoreSectab, lbKeyStorePassSectab, txtKeyStorePassSectab,
                         lbKeyPasswordSectab, txtKeyPasswordSectab})
            if (!widgetMade(w))
                return tab;
        placeRow(lbKeyStroreSectab, txtKeyStoreSectab, 115, 140, CONTROL_LEFT);
        placeRow(lbKeyStorePassSectab, txtKeyStorePassSectab, 145, 170, CONTROL_LEFT);
        placeRow(lbKeyPasswordSectab, txtKeyPasswordSectab, 175, 200, CONTROL_LEFT);
        // Variants 0 and 2 put the host name under the key store rows.
        if (variantNumber == 0 || variantNumber == 2)
            h = 205;
    }
    lbHostNameCertSectab = enc.add(createLabel(formEncryption, 7324));
    txtHostNameCertSectab = enc.add(createTextField(formEncryption, "txtHostNameCertSectab", nullptr));
    if (!widgetMade(lbHostNameCertSectab) || !widgetMade(txtHostNameCertSectab))
        return tab;
    placeRow(lbHostNameCertSectab, txtHostNameCertSectab, h, h + ROW_HEIGHT, CONTROL_LEFT);
    enc.manage();
    XtManageChild(formEncryption);
    setControlRect(frameEncryption, t + 50, 20 + (t + 50) + (h + 30), 5, 390 + offset);

    tabChildren.manage();
    // Open in the state that the defaults call for.
    encryptMethodChanged(cbEncryptMethodSectab, nullptr, nullptr);
    authMethodChanged(cbAuthMethodSectab, nullptr, nullptr);
    return tab;
}

void authMethodChanged(Widget, XtPointer, XtPointer)
{
    char method[ZU_LABEL_BUFFER];
    const bool kerberos = std::strcmp(comboSelectedText(cbAuthMethodSectab, method, sizeof method), "4 - Kerberos") == 0;
    for (Widget w : {lbGssLibSectab, txtGssLibSectab, txtServicePrnNameSectab, lbServicePrincNameSectab})
        setSensitive(w, kerberos);
}

void encryptMethodChanged(Widget, XtPointer, XtPointer)
{
    char method[ZU_LABEL_BUFFER];
    const bool on = std::strcmp(comboSelectedText(cbEncryptMethodSectab, method, sizeof method), "0 - No Encryption") != 0;
    for (Widget w : {tgValidServerCertSectab, lbTrustStoreSectab, txtTrustStoreSectab, lbTrustStorePwdSectab,
                     txtTrustStorePwdSecTab, lbHostNameCertSectab, txtHostNameCertSectab})
        setSensitive(w, on);
    // Key store pairs, where the variant built them.
    const Widget pairs[][2] = {{txtKeyStoreSectab, lbKeyStroreSectab},
                               {txtKeyStorePassSectab, lbKeyStorePassSectab},
                               {txtKeyPasswordSectab, lbKeyPasswordSectab}};
    for (const auto& pair : pairs) {
        if (pair[0] != nullptr) {
            setSensitive(pair[0], on);
            setSensitive(pair[1], on);
        }
    }
}

void checkPassword(Widget, XtPointer clearTextSlot, XtPointer verify)
{
    auto* cbs = static_cast<XmTextVerifyCallbackStruct*>(verify);
    auto** slot = static_cast<char**>(clearTextSlot);
    if (cbs == nullptr || slot == nullptr || cbs->reason == XmCR_ACTIVATE)
        return;

    // Positions come from the widget, which shows one asterisk per clear
    // character; they are clamped to the clear text all the same, so that a
    // slot out of step with its field can never be written past.
    const long clearLength = *slot != nullptr ? static_cast<long>(std::strlen(*slot)) : 0;
    long start = cbs->startPos < 0 ? 0 : cbs->startPos;
    long end = cbs->endPos;
    if (start > clearLength)
        start = clearLength;
    if (end > clearLength)
        end = clearLength;
    if (start < end && clearLength > 0)
        std::memmove(*slot + start, *slot + end, static_cast<std::size_t>(clearLength - end + 1));

    const long insertLength = cbs->text != nullptr && cbs->text->ptr != nullptr ? cbs->text->length : 0;
    if (insertLength <= 0)
        return;

    if (*slot == nullptr || (*slot)[0] == '\0') {
        char* fresh = XtMalloc(static_cast<Cardinal>(insertLength + 1));
        std::memcpy(fresh, cbs->text->ptr, static_cast<std::size_t>(insertLength));
        fresh[insertLength] = '\0';
        XtFree(*slot);
        *slot = fresh;
    } else {
        const long kept = static_cast<long>(std::strlen(*slot));
        *slot = XtRealloc(*slot, static_cast<Cardinal>(kept + insertLength + 1));
        // Open a gap at start for the new text, tail and NUL moved up.
        std::memmove(*slot + start + insertLength, *slot + start, static_cast<std::size_t>(kept - start + 1));
        std::memcpy(*slot + start, cbs->text->ptr, static_cast<std::size_t>(insertLength));
    }
    // The field itself only ever holds asterisks.
    std::memset(cbs->text->ptr, '*', static_cast<std::size_t>(insertLength));
}

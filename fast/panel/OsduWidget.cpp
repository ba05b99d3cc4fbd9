#include <fast/panel/OsduWidget.h>

#include <fast/client/Fast.h>
#include <fast/client/Utf8Text_p.h>
#include <fast/client/VdsDescriptorParser.h>
#include <fast/client/VirtualDrive.h>
#include <fast/osdu/FileCollectionSearch.h>
#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/OsduTreeModel.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/ControlNames.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/PanelMessages_p.h>
#include <fast/panel/VdsRegistration_p.h>
#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/OsduTreeDelegate.h>
#include <fast/trees/OsduTreeView.h>

#include <korvane/IconXPMHandler.h>
#include <kvWidgets/HelpToolTip.h>
#include <osdu/FileCollection.h>
#include <osdu/HttpResponse.h>
#include <osdu/OsduAuthProvider.h>

#include <Poco/JSON/JSONException.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace fast {

namespace {

// Call-site numbers carried by the trace lines; the host's log readers rely on them.
enum TraceSite : int {
    SearchDoneJsonSite = 149,
    AuthenticationErrorSite = 365,
    MountJsonSite = 286,
    MountSite = 302,
};

const char* const kProviderHelp = QT_TRANSLATE_NOOP(
    "fast::OsduWidget",
    "Cloud provider and OSDU™ Data Platform settings are defined in Tools>Settings>OSDU™ Data Platform/FAST™ "
    "pane.<br>Once these settings are defined, select a cloud provider and click on « Connect » to initialize the "
    "connection to OSDU™ Data Platform.</br>");
const char* const kSearchHelp = QT_TRANSLATE_NOOP(
    "fast::OsduWidget",
    "When connected, search for VDS volumes.<br>Search with an empty filter to discover all VDS "
    "volumes.</br><br>Narrow your search by defining a filter applied on the following fields:</br><br>&nbsp;- "
    "Name</br><br>&nbsp;- Description</br><br>&nbsp;- ID</br>");

// The dataset's FAST id and files from FAST's listing, matched by URL byte for byte; none when
// FAST does not know it.
void takeRegistration(VdsModel& dataset, const std::vector<VdsInfo>& volumes)
{
    const auto known = std::find_if(volumes.begin(), volumes.end(),
                                    [&dataset](const VdsInfo& info) { return info.url == dataset.url; });
    dataset.vdsId = known != volumes.end() ? known->vdsId : std::string();
    dataset.files = known != volumes.end() ? known->files : std::vector<VdsFile>();
}

} // namespace

OsduWidget::OsduWidget(const std::shared_ptr<Fast>& fast, const QString& projectPath, QWidget* parent)
    : FastWidget(fast, parent), m_projectPath(projectPath)
{
    qRegisterMetaType<std::shared_ptr<osdu::StorageRecordCollection>>("std::shared_ptr<osdu::StorageRecordCollection>");

    m_osduTree = new OsduTreeView(this);
    m_osduTree->setItemDelegate(new OsduTreeDelegate(m_osduTree->proxyModel(), m_osduTree));
    m_resultLabel = new QLabel(tr("No results"), this);
    m_searchInput = new SearchInput(this);
    m_searchButton = new QPushButton(tr("Search"), this);
    m_providerChoice = new QComboBox(this);
    m_providerChoice->addItem(QIcon(), text(getCloudProviderDisplayName(OsduFastInitializer::AWS)));
    m_providerChoice->addItem(QIcon(), text(getCloudProviderDisplayName(OsduFastInitializer::Azure)));
    m_connectButton = new QPushButton(tr("Connect"), this);
    m_osduTree->setObjectName(kOsduTree);
    m_resultLabel->setObjectName(kOsduResultLabel);
    m_searchInput->setObjectName(kOsduSearchInput);
    m_searchButton->setObjectName(kOsduSearchButton);
    m_providerChoice->setObjectName(kOsduProviderChoice);
    m_connectButton->setObjectName(kOsduConnectButton);
    const QPixmap helpIcon = *iconHandler->getPixmap("help24");

    // Read-only, so that the address can be selected and copied by mouse or keyboard.
    m_signInAddressRow = new QWidget(this);
    m_signInAddress = new QLineEdit(m_signInAddressRow);
    m_signInAddress->setReadOnly(true);
    m_signInAddress->setObjectName(kOsduSignInAddress);
    auto* copyButton = new QPushButton(tr("Copy"), m_signInAddressRow);
    copyButton->setObjectName(kOsduCopyAddressButton);
    connect(copyButton, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(m_signInAddress->text()); });
    auto* explanation = new QLabel(tr("No web browser could be opened. Open this address in one to sign in:"),
                                   m_signInAddressRow);
    explanation->setWordWrap(true);
    auto* addressLayout = new QGridLayout(m_signInAddressRow);
    addressLayout->setContentsMargins(0, 0, 0, 0);
    addressLayout->addWidget(explanation, 0, 0, 1, 2);
    addressLayout->addWidget(m_signInAddress, 1, 0);
    addressLayout->addWidget(copyButton, 1, 1);
    m_signInAddressRow->hide();

    auto* page = new QVBoxLayout(this);
    page->addWidget(m_signInAddressRow);
    auto* layout = new QGridLayout;
    page->addLayout(layout);
    layout->addWidget(m_providerChoice, 0, 0, 1, 2);
    layout->addWidget(m_connectButton, 0, 2);
    layout->addWidget(new kvWidgets::HelpToolTip(helpIcon, tr(kProviderHelp), this), 0, 3);
    layout->addWidget(m_searchInput, 1, 0, 1, 2);
    layout->addWidget(m_searchButton, 1, 2);
    layout->addWidget(new kvWidgets::HelpToolTip(helpIcon, tr(kSearchHelp), this), 1, 3);
    layout->addWidget(m_resultLabel, 2, 0, 1, 4);
    layout->addWidget(m_osduTree, 3, 0, 1, 4);

    for (QWidget* widget : {static_cast<QWidget*>(m_searchInput), static_cast<QWidget*>(m_searchButton),
                            static_cast<QWidget*>(m_resultLabel), static_cast<QWidget*>(m_osduTree)})
        widget->setEnabled(false);

    // The process signs in with the provider of its first Connect, whichever page that was on.
    if (const auto current = OsduFastInitializer::currentInstance(); current && current->authProvider()) {
        const bool azure = current->authProvider()->getProviderName()
                           == OsduFastInitializer::getCloudProviderSettingsGroup(OsduFastInitializer::Azure);
        m_providerChoice->setCurrentIndex(azure ? OsduFastInitializer::Azure : OsduFastInitializer::AWS);
        m_providerChoice->setEnabled(false);
    }

    m_treeView = m_osduTree;
    connectTreeView();
    connect(m_connectButton, &QPushButton::clicked, this, &OsduWidget::onConnect);
    connect(m_searchButton, &QPushButton::clicked, this, &OsduWidget::performSearch);
    // Often enough to see it move, seldom enough not to keep the host's GUI thread busy.
    m_progressTimer = new QTimer(this);
    m_progressTimer->setInterval(100);
    connect(m_progressTimer, &QTimer::timeout, this, &OsduWidget::showProgress);
    // Return does what the button does: one search at a time, over a cleared tree.
    connect(m_searchInput, &QLineEdit::returnPressed, this, &OsduWidget::performSearch);
    connect(m_searchInput, &SearchInput::searchDone, this, &OsduWidget::onSearchDone);
    connect(m_osduTree, &FastTreeView::mountVds, this,
            [this, projectPath](const VdsModel& vdsModel) { onMountVds(projectPath, vdsModel); });
    connect(this, &OsduWidget::enableUI, this, &OsduWidget::enableSearch);
}

OsduWidget::~OsduWidget()
{
    // Nobody would see the address or the outcome of this page's sign-in any more.
    if (m_signingIn)
        cancelSignIn();
    // The search's late results are dropped with the search box; the cursor it set is not.
    if (m_searching)
        QApplication::restoreOverrideCursor();
    Q_EMIT sendActionToMdi(nullptr, nullptr, "UPDATE_WINDOW_MANAGER");
}

void OsduWidget::setConnectedToFast(bool connected)
{
    FastWidget::setConnectedToFast(connected);
    FastTreeModel* model = m_osduTree->model();
    if (!connected || model->vdsCount() == 0)
        return;
    const std::vector<VdsInfo> volumes = fastVolumes();
    const QList<VdsModel> datasets = model->vdsList();
    model->removeAllRecords();
    for (VdsModel dataset : datasets) {
        takeRegistration(dataset, volumes);
        model->addVds(dataset);
    }
    m_osduTree->refresh();
}

void OsduWidget::onConnect()
{
    if (m_signingIn) {
        cancelSignIn();
        return;
    }
    // The initializer is process-wide and keeps the first provider.
    m_providerChoice->setEnabled(false);
    try {
        m_initializer = OsduFastInitializer::instance(
            static_cast<OsduFastInitializer::eCloudProvider>(m_providerChoice->currentIndex()));
    } catch (const std::exception& failure) {
        traceException(failure);
        m_initializer.reset();
    }
    if (!m_initializer || !m_initializer->isInitialized()) {
        trace("FAST OSDU connection error");
        QMessageBox::critical(this, tr("Error Initializing OSDU"),
                              tr("Failed to initialize the OSDU runtime environment."), QMessageBox::Ok);
        return;
    }
    setSigningIn(true);
    osdu::OsduAuthProvider* provider = m_initializer->authProvider().get();
    connect(provider, &osdu::OsduAuthProvider::userAuthorized, this, &OsduWidget::userAuthorized, Qt::UniqueConnection);
    connect(provider, &osdu::OsduAuthProvider::error, this, &OsduWidget::authenticationError, Qt::UniqueConnection);
    connect(provider, &osdu::OsduAuthProvider::info, this, &OsduWidget::logAuthInfo, Qt::UniqueConnection);
    connect(provider, &osdu::OsduAuthProvider::sessionEnded, this, &OsduWidget::sessionEnded, Qt::UniqueConnection);
    connect(provider, &osdu::OsduAuthProvider::browserNotOpened, this, &OsduWidget::showSignInAddress,
            Qt::UniqueConnection);
    try {
        provider->authorizeAsync(OsduFastInitializer::authenticationTimeoutMs());
    } catch (const std::exception& failure) {
        authenticationError(exceptionText(failure), {}, {});
    }
}

void OsduWidget::authenticationError(const QString& message, const QString& details, const QUrl& /*url*/)
{
    setSigningIn(false);
    QString shown = message;
    if (!details.isEmpty())
        shown += QString("<br>%1").arg(details);
    trace(QString("FAST OSDU authentication error %1 : %2").arg(QString::number(AuthenticationErrorSite), shown));
    QMessageBox::critical(this, tr("Failed to connect to OSDU environment"), shown, QMessageBox::Ok);
}

void OsduWidget::logAuthInfo(const QString& message)
{
    information(tr("OSDU Authentication: %1").arg(message));
}

void OsduWidget::userAuthorized()
{
    setSigningIn(false);
    Q_EMIT enableUI();
}

void OsduWidget::setSigningIn(bool signingIn)
{
    m_signingIn = signingIn;
    m_connectButton->setText(signingIn ? tr("Cancel") : tr("Connect"));
    m_connectButton->setEnabled(true);
    if (!signingIn)
        m_signInAddressRow->hide();
}

void OsduWidget::cancelSignIn()
{
    setSigningIn(false);
    if (m_initializer && m_initializer->authProvider())
        m_initializer->authProvider()->cancelAuthorization();
    logAuthInfo(tr("Sign-in cancelled"));
}

void OsduWidget::showSignInAddress(const QUrl& url)
{
    if (!m_signingIn)
        return;
    m_signInAddress->setText(url.toString(QUrl::FullyEncoded));
    m_signInAddress->setCursorPosition(0);
    m_signInAddressRow->show();
}

void OsduWidget::sessionEnded()
{
    if (m_searching)
        m_sessionEnded = true;
    else
        tellSessionEnded();
}

void OsduWidget::tellSessionEnded()
{
    m_sessionEnded = false;
    m_connectButton->setEnabled(true);
    warn(this, tr("OSDU session ended"),
         tr("The OSDU™ Data Platform session has ended. Press « Connect » to sign in again."));
}

void OsduWidget::enableSearch()
{
    m_providerChoice->setEnabled(false);
    m_connectButton->setEnabled(false);
    try {
        m_searchInput->initialize();
    } catch (const std::exception& failure) {
        // Signed in, but no client for the platform: as good as a failed sign-in.
        authenticationError(exceptionText(failure), {}, {});
        return;
    }
    for (QWidget* widget : {static_cast<QWidget*>(m_resultLabel), static_cast<QWidget*>(m_searchInput),
                            static_cast<QWidget*>(m_searchButton), static_cast<QWidget*>(m_osduTree)})
        widget->setEnabled(true);
}

void OsduWidget::performSearch()
{
    if (m_searching) {
        cancelSearch();
        return;
    }
    m_searching = true;
    // Busy, not waiting: Cancel and the rest of the host still answer.
    QApplication::setOverrideCursor(Qt::BusyCursor);
    m_searchInput->setEnabled(false);
    m_searchButton->setText(tr("Cancel"));
    m_osduTree->clear();
    m_searchInput->search();
    if (m_searching) {
        showProgress();
        m_progressTimer->start();
    }
}

void OsduWidget::cancelSearch()
{
    if (m_searching)
        m_searchInput->cancel();
}

void OsduWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && m_searching) {
        cancelSearch();
        event->accept();
        return;
    }
    FastWidget::keyPressEvent(event);
}

void OsduWidget::showProgress()
{
    const std::shared_ptr<const SearchRun> run = m_searchInput->lastSearch();
    if (run && run->hits() > 0)
        m_resultLabel->setText(tr("Reading datasets: %1 of %2").arg(run->read()).arg(run->hits()));
    else
        m_resultLabel->setText(tr("Searching…"));
}

QString OsduWidget::resultText(int count) const
{
    const std::shared_ptr<const SearchRun> run = m_searchInput->lastSearch();
    // %n lets a translation give each count its own plural form; the English keeps "result(s)".
    QString shown = count > 0 ? tr("%n result(s) found", nullptr, count) : tr("No result");
    if (!run)
        return shown;
    if (run->cancelled()) {
        shown = tr("%1 (search cancelled after %2 of %3 datasets)").arg(shown).arg(run->read()).arg(run->hits());
    } else if (run->totalCount() > static_cast<long long>(run->hits())) {
        shown = tr("%1 result(s) found (the first %2 of %3 datasets were searched)")
                    .arg(count)
                    .arg(run->hits())
                    .arg(run->totalCount());
    }
    if (run->unread() > 0) {
        QStringList reasons;
        for (const std::string& reason : run->reasons())
            reasons << text(reason);
        shown += QLatin1Char('\n')
                 + tr("%n dataset(s) could not be read: %1", nullptr, static_cast<int>(run->unread()))
                       .arg(reasons.join(QStringLiteral("; ")));
    } else if (!run->reasons().empty()) {
        // The query itself failed; its reason says so.
        shown += QLatin1Char('\n') + text(run->reasons().front());
    }
    return shown;
}

std::vector<VdsInfo> OsduWidget::fastVolumes()
{
    try {
        const auto files = m_fast->getFileList();
        const auto volumes = m_fast->getVdsList();
        return parseVdsInfos(volumes->getMessage(), files->getMessage());
    } catch (const std::exception& failure) {
        // A listing of the wrong shape is as unreadable as one that is not JSON at all.
        trace(QString("FAST OSDU onSearchDone JSONException %1").arg(SearchDoneJsonSite));
        const QString reason = exceptionText(failure);
        trace(QString("Unable to parse JSON to get VDS list: %1").arg(reason));
        warn(this, tr("Unable to list VDS"), tr("Unable to parse JSON to get VDS list: %1").arg(reason));
    }
    return {};
}

void OsduWidget::onSearchDone(const std::shared_ptr<osdu::StorageRecordCollection>& results)
{
    try {
        showResults(results);
    } catch (const std::exception& failure) {
        trace(QString("FAST OSDU onSearchDone exception: %1").arg(exceptionText(failure)));
    }
    m_progressTimer->stop();
    m_resultLabel->setText(resultText(m_osduTree->model()->vdsCount()));
    if (m_searching)
        QApplication::restoreOverrideCursor();
    m_searching = false;
    m_searchInput->setEnabled(true);
    m_searchButton->setText(tr("Search"));
    if (m_sessionEnded)
        tellSessionEnded();
}

void OsduWidget::showResults(const std::shared_ptr<osdu::StorageRecordCollection>& results)
{
    const std::vector<VdsInfo> volumes = fastVolumes();
    FastTreeModel* model = m_osduTree->model();
    for (const auto& record : results ? *results : osdu::StorageRecordCollection()) {
        const auto* collection = dynamic_cast<const osdu::FileCollection*>(record.get());
        if (!collection)
            continue;
        const std::string url = modifyVdsFilepath(collection->getDatasetProperties().getFileSource());
        // The platform's texts are UTF-8 whatever the machine's 8-bit encoding is.
        VdsModel vds(text(collection->getId()), text(collection->getName()), text(collection->getKind()),
                     text(collection->getDescription()), {}, url, {});
        takeRegistration(vds, volumes);
        model->addVds(vds);
    }
    m_osduTree->refresh();
}

void OsduWidget::onMountVds(const QString& projectPath, const VdsModel& vdsModel)
{
    FastTreeModel* model = m_osduTree->model();
    std::string vdsId = vdsModel.vdsId;
    try {
        if (!vdsId.empty()) {
            noteAlreadyRegistered(vdsModel.url, vdsId);
        } else {
            vdsId = registerVdsInFast(*m_fast, vdsModel.url);
            if (vdsId.empty()) {
                warnRegistrationFailed(this);
                model->populate();
                return;
            }
        }
        model->setVdsIdForUrl(vdsModel.url, vdsId);
        openMountDialog(projectPath, vdsModel, vdsId);
    } catch (const Poco::JSON::JSONException& failure) {
        trace(QString("FAST OSDU onMountVds JSONException %1").arg(MountJsonSite));
        error(tr("Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. Exception while parsing JSON to get volume "
                 "data from VDS: %3")
                  .arg(text(vdsModel.url), text(vdsId), exceptionText(failure)));
        forgetRegistration(vdsModel, vdsId);
        warnMountFailed(this);
    } catch (const std::exception& failure) {
        trace(QString("FAST OSDU onMountVds exception %1").arg(MountSite));
        error(tr("Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. Exception : %3")
                  .arg(text(vdsModel.url), text(vdsId), exceptionText(failure)));
        forgetRegistration(vdsModel, vdsId);
        warnMountFailed(this);
    }
}

void OsduWidget::forgetRegistration(const VdsModel& vdsModel, const std::string& vdsId)
{
    // Only a registration this mount made is undone; a dataset FAST knew before stays known.
    if (!vdsModel.vdsId.empty() || vdsId.empty())
        return;
    quietly([&] { m_fast->unmountVds(vdsId, {}); });
    m_osduTree->model()->setVdsIdForUrl(vdsModel.url, {});
    m_osduTree->refresh();
}

void OsduWidget::onVdsMounted(const std::string& vdsId, const std::string& fileId, const std::string& fileName)
{
    m_osduTree->model()->addFile(vdsId, fileId, fileName);
    // A dataset has no row to add the file under in place: show it by rebuilding.
    m_osduTree->refresh();
    Q_EMIT addToExtraDataManager(text(fileName), OSDU);
}

} // namespace fast

#include "platform/wayland/DataControl.h"

#include "platform/linux/FlavourNames.h"

#include <ext-data-control-v1.h>
#include <wlr-data-control-unstable-v1.h>

#include <algorithm>
#include <utility>

namespace {

/// The most flavours that are read. Who offers more text-like ones than this is not to be taken
/// seriously.
constexpr int mostFlavours = 24;

/// Names of any use are shorter by far.
constexpr std::size_t longestName = 255;

struct Wlr {
    using Manager = zwlr_data_control_manager_v1;
    using Device = zwlr_data_control_device_v1;
    using Source = zwlr_data_control_source_v1;
    using Offer = zwlr_data_control_offer_v1;
    using DeviceListener = zwlr_data_control_device_v1_listener;
    using SourceListener = zwlr_data_control_source_v1_listener;
    using OfferListener = zwlr_data_control_offer_v1_listener;
    static constexpr const wl_interface &interface = zwlr_data_control_manager_v1_interface;
    static constexpr auto getDevice = zwlr_data_control_manager_v1_get_data_device;
    static constexpr auto createSource = zwlr_data_control_manager_v1_create_data_source;
    static constexpr auto listenToDevice = zwlr_data_control_device_v1_add_listener;
    static constexpr auto listenToSource = zwlr_data_control_source_v1_add_listener;
    static constexpr auto listenToOffer = zwlr_data_control_offer_v1_add_listener;
    static constexpr auto setSelection = zwlr_data_control_device_v1_set_selection;
    static constexpr auto offer = zwlr_data_control_source_v1_offer;
    static constexpr auto receive = zwlr_data_control_offer_v1_receive;
    static constexpr auto destroyManager = zwlr_data_control_manager_v1_destroy;
    static constexpr auto destroyDevice = zwlr_data_control_device_v1_destroy;
    static constexpr auto destroySource = zwlr_data_control_source_v1_destroy;
    static constexpr auto destroyOffer = zwlr_data_control_offer_v1_destroy;
};

struct Ext {
    using Manager = ext_data_control_manager_v1;
    using Device = ext_data_control_device_v1;
    using Source = ext_data_control_source_v1;
    using Offer = ext_data_control_offer_v1;
    using DeviceListener = ext_data_control_device_v1_listener;
    using SourceListener = ext_data_control_source_v1_listener;
    using OfferListener = ext_data_control_offer_v1_listener;
    static constexpr const wl_interface &interface = ext_data_control_manager_v1_interface;
    static constexpr auto getDevice = ext_data_control_manager_v1_get_data_device;
    static constexpr auto createSource = ext_data_control_manager_v1_create_data_source;
    static constexpr auto listenToDevice = ext_data_control_device_v1_add_listener;
    static constexpr auto listenToSource = ext_data_control_source_v1_add_listener;
    static constexpr auto listenToOffer = ext_data_control_offer_v1_add_listener;
    static constexpr auto setSelection = ext_data_control_device_v1_set_selection;
    static constexpr auto offer = ext_data_control_source_v1_offer;
    static constexpr auto receive = ext_data_control_offer_v1_receive;
    static constexpr auto destroyManager = ext_data_control_manager_v1_destroy;
    static constexpr auto destroyDevice = ext_data_control_device_v1_destroy;
    static constexpr auto destroySource = ext_data_control_source_v1_destroy;
    static constexpr auto destroyOffer = ext_data_control_offer_v1_destroy;
};

template <class Wire>
class DataControlBy : public DataControl {
public:
    DataControlBy(WaylandConnection &wayland, News news) : m_news(std::move(news)) {
        static constexpr typename Wire::DeviceListener listener{
            .data_offer = [](void *self, auto *,
                             typename Wire::Offer *offer) { of(self).announced(offer); },
            .selection = [](void *self, auto *,
                            typename Wire::Offer *offer) { of(self).selected(offer); },
            .finished = [](void *self, auto *) { of(self).end(); },
            // What is merely selected is none of ours.
            .primary_selection = [](void *self, auto *,
                                    typename Wire::Offer *offer) { of(self).takeAnnounced(offer); },
        };
        m_manager = holdWayland(wayland.bind<typename Wire::Manager>(Wire::interface),
                                Wire::destroyManager);
        m_device = holdWayland(Wire::getDevice(m_manager.get(), wayland.seats().best()),
                               Wire::destroyDevice);
        Wire::listenToDevice(m_device.get(), &listener, this);
    }

    const std::optional<QList<QByteArray>> &offered() const override {
        static const std::optional<QList<QByteArray>> none;
        return m_current ? m_current->names : none;
    }

    void receive(const QByteArray &name, const Descriptor &pipe) override {
        Wire::receive(m_current->object.get(), name.constData(), pipe.number());
    }

    void own(const PasteboardItem &contents) override {
        static constexpr typename Wire::SourceListener listener{
            .send =
                [](void *data, auto *, const char *name, int descriptor) {
                    auto *source = static_cast<Source *>(data);
                    source->control->send(*source, name, Descriptor(descriptor));
                },
            .cancelled =
                [](void *data, auto *) {
                    auto *source = static_cast<Source *>(data);
                    source->control->cancelled(source);
                },
        };
        if (!m_device)
            return;
        auto &source = m_sources.emplace_back(std::make_unique<Source>());
        source->control = this;
        source->contents = contents;
        source->object = holdWayland(Wire::createSource(m_manager.get()), Wire::destroySource);
        Wire::listenToSource(source->object.get(), &listener, source.get());
        for (const PasteboardRepresentation &representation : contents)
            Wire::offer(source->object.get(), representation.name.constData());
        Wire::setSelection(m_device.get(), source->object.get());
        m_owned = source.get();
    }

    bool isOwner() const override { return m_owned; }
    bool hasEnded() const override { return !m_device; }

private:
    struct Offer {
        WaylandObject<typename Wire::Offer> object;
        std::optional<QList<QByteArray>> names = QList<QByteArray>();
    };
    /// What we own, or owned: requests made before somebody took it may still arrive.
    struct Source {
        DataControlBy *control;
        PasteboardItem contents;
        WaylandObject<typename Wire::Source> object;
    };

    static DataControlBy &of(void *self) { return *static_cast<DataControlBy *>(self); }

    void announced(typename Wire::Offer *object) {
        static constexpr typename Wire::OfferListener listener{
            .offer = [](void *data, auto *,
                        const char *name) { add(*static_cast<Offer *>(data)->names, name); },
        };
        auto &offer = m_announced.emplace_back(std::make_unique<Offer>());
        offer->object = holdWayland(object, Wire::destroyOffer);
        Wire::listenToOffer(object, &listener, offer.get());
    }

    static void add(QList<QByteArray> &names, const char *given) {
        if (qstrnlen(given, longestName + 1) > longestName || names.size() == mostFlavours)
            return;
        const QByteArray name(given);
        if (FlavourNames::holdsData(name) && FlavourNames::typeOf(name) && !names.contains(name))
            names.append(name);
    }

    std::unique_ptr<Offer> takeAnnounced(typename Wire::Offer *object) {
        const auto found =
            std::find_if(m_announced.begin(), m_announced.end(),
                         [=](const auto &offer) { return offer->object.get() == object; });
        if (found == m_announced.end())
            return nullptr;
        std::unique_ptr<Offer> offer = std::move(*found);
        m_announced.erase(found);
        return offer;
    }

    void selected(typename Wire::Offer *object) {
        m_current = takeAnnounced(object);
        // What we own ourselves is announced to us too; before it can be somebody else's, it is
        // cancelled.
        if (!m_owned)
            m_news.changed();
    }

    void send(const Source &source, const char *name, Descriptor pipe) const {
        for (const PasteboardRepresentation &representation : source.contents) {
            if (representation.name == name) {
                m_news.fetched(representation.data, std::move(pipe));
                return;
            }
        }
    }

    void cancelled(Source *source) {
        const bool isLost = source == m_owned;
        if (isLost)
            m_owned = nullptr;
        std::erase_if(m_sources, [=](const auto &one) { return one.get() == source; });
        if (isLost)
            m_news.lost();
    }

    void end() {
        m_announced.clear();
        m_current.reset();
        m_device.reset();
        if (std::exchange(m_owned, nullptr))
            m_news.lost();
    }

    News m_news;
    WaylandObject<typename Wire::Manager> m_manager;
    WaylandObject<typename Wire::Device> m_device;
    std::vector<std::unique_ptr<Offer>> m_announced;
    std::unique_ptr<Offer> m_current; ///< what is on the clipboard
    std::vector<std::unique_ptr<Source>> m_sources;
    const Source *m_owned = nullptr;
};

} // namespace

QString DataControl::problem(const WaylandConnection &wayland) {
    if (!wayland.isOpen())
        return wayland.problem();
    if (wayland.offers(Ext::interface) || wayland.offers(Wlr::interface))
        return {};
    return QStringLiteral("the compositor offers no data-control protocol");
}

std::unique_ptr<DataControl> DataControl::make(WaylandConnection &wayland, News news) {
    if (!wayland.isOpen() || !wayland.seats().best())
        return nullptr;
    if (wayland.offers(Ext::interface))
        return std::make_unique<DataControlBy<Ext>>(wayland, std::move(news));
    if (wayland.offers(Wlr::interface))
        return std::make_unique<DataControlBy<Wlr>>(wayland, std::move(news));
    return nullptr;
}

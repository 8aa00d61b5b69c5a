// Qt 6 Core: QObject with a Q_PROPERTY double (clamp + round + signal), direct connections;
// QObject::setProperty by name; QProperty with change handlers and update groups.
#include "benchmarks/Cases.h"

#include <bench_enums.h>
#include <QLocale>
#include <QMetaEnum>
#include <QObject>
#include <QProperty>
#include <QString>
#include <QStringList>
#include <QVariant>

using namespace cvars::benchmarks;

class Obj : public QObject {
  Q_OBJECT
  Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged)
 public:
  Obj() : unit(QStringLiteral("V")) {
    QString n = QString::fromLatin1("Trigger Level");
    setObjectName(n);
    remote = n.toUpper().replace(u' ', u'_');
  }
  double value() const { return v_; }
  __attribute__((noinline)) void setValue(double v) {
    double c = v < min ? min : v > max ? max : v;
    double r = std::floor(c / grain + 0.5) * grain;
    if (r == v_) return;
    v_ = r;
    emit valueChanged(r);
  }
  double def = 1, min = kMin, max = kMax, grain = kGrain;
  QString remote, unit;
  unsigned flags = 0;
 signals:
  void valueChanged(double v);

 private:
  double v_ = 0;
};
class Listener : public QObject {
  Q_OBJECT
 public:
  explicit Listener(uint64_t* n) : n_(n) {}
 public slots:
  void on(double) { ++*n_; }

 private:
  uint64_t* n_;
};

namespace {

struct Rig {
  uint64_t calls = 0;
  std::vector<std::unique_ptr<Listener>> l;
  Obj o;
  explicit Rig(int64_t n) {
    for (int64_t i = 0; i < n; ++i) {
      l.push_back(std::make_unique<Listener>(&calls));
      QObject::connect(&o, &Obj::valueChanged, l.back().get(), &Listener::on, Qt::DirectConnection);
    }
  }
};
void set_direct(Obj& o, double v) { o.setValue(v); }
void set_name(Obj& o, double v) { o.setProperty("value", QVariant(v)); }
template <void (*F)(Obj&, double)>
void sc(benchmark::State& s) {
  Rig r(s.range(0));
  SetChanged(s, r.o, F, &r.calls, uint64_t(s.range(0)));
}
template <void (*F)(Obj&, double)>
void ss(benchmark::State& s) {
  Rig r(1);
  SetSame(s, r.o, F, &r.calls);
}
// QObject has no gathering of its own; blocking the signals and emitting once is the usual idiom.
void b10(benchmark::State& s) {
  Rig r(1);
  Batch10(
      s, r.o, [](Obj& o) { o.blockSignals(true); }, set_direct,
      [](Obj& o) {
        o.blockSignals(false);
        emit o.valueChanged(o.value());
      },
      &r.calls);
}
void th(benchmark::State& s) {
  Threads1M(
      s, [] { return std::make_unique<Rig>(1); },
      [](std::unique_ptr<Rig>& r, double v) { r->o.setValue(v); },
      [](std::unique_ptr<Rig>& r) { r.reset(); });
}
void get_name(benchmark::State& s) {
  Obj o;
  for (auto _ : s) {
    double d = o.property("value").toDouble();
    benchmark::DoNotOptimize(d);
  }
}

// QProperty<double> with change handlers.
struct Fn {
  uint64_t* n;
  void operator()() const { ++*n; }
};
struct PRig {
  uint64_t calls = 0;
  QProperty<double> p;
  std::vector<QPropertyChangeHandler<Fn>> h;
  explicit PRig(int64_t n) {
    for (int64_t i = 0; i < n; ++i) h.push_back(p.onValueChanged(Fn{&calls}));
  }
};
__attribute__((noinline)) void set_prop(PRig& r, double v) { r.p.setValue(Fit(v)); }
void psc(benchmark::State& s) {
  PRig r(s.range(0));
  SetChanged(s, r, set_prop, &r.calls, uint64_t(s.range(0)));
}
void pss(benchmark::State& s) {
  PRig r(1);
  SetSame(s, r, set_prop, &r.calls);
}
void pb10(benchmark::State& s) {
  PRig r(1);
  Batch10(
      s, r, [](PRig&) { Qt::beginPropertyUpdateGroup(); }, set_prop,
      [](PRig&) { Qt::endPropertyUpdateGroup(); }, &r.calls);
}

void vt_number(benchmark::State& s) {
  size_t i = 0;
  for (auto _ : s) {
    QString t = QString::number(Values()[i++ & 1023], 'f', 3);
    benchmark::DoNotOptimize(t);
  }
}
void vt_locale(benchmark::State& s) {
  QLocale l(QLocale::English, QLocale::UnitedStates);
  size_t i = 0;
  for (auto _ : s) {
    QString t = l.toString(Values()[i++ & 1023], 'f', 3);
    benchmark::DoNotOptimize(t);
  }
}
void vt_data(benchmark::State& s) {
  QLocale l(QLocale::English, QLocale::UnitedStates);
  size_t i = 0;
  for (auto _ : s) {
    QString t = l.formattedDataSize(qint64(Values()[i & 1023] * double(1ull << ((i % 5) * 10 + 8))),
                                    3, QLocale::DataSizeSIFormat);
    ++i;
    benchmark::DoNotOptimize(t);
  }
}
void vt_eng(benchmark::State& s) {
  size_t i = 0;
  for (auto _ : s) {
    auto& x = TextValues()[i++ & 63];
    Engineering e = ToEngineering(x.v, x.step);
    QString t = QString::number(e.mantissa, 'f', e.decimals);
    t += QLatin1String(PrefixText(e.k));
    t += QLatin1String("V");
    benchmark::DoNotOptimize(t);
  }
}
const std::vector<QString>& texts() {
  static const auto t = [] {
    std::vector<QString> r;
    for (size_t i = 0; i < 64; ++i) r.push_back(QString::number(Values()[i], 'f', 3));
    return r;
  }();
  return t;
}
const std::vector<QString>& eng_texts() {
  static const auto t = [] {
    std::vector<QString> r;
    for (auto& x : TextValues()) {
      Engineering e = ToEngineering(x.v, x.step);
      r.push_back(QString::number(e.mantissa, 'f', e.decimals) + QLatin1String(PrefixText(e.k)) +
                  QLatin1String("V"));
    }
    return r;
  }();
  return t;
}
void tv_string(benchmark::State& s) {
  size_t i = 0;
  for (auto _ : s) {
    bool ok;
    double d = texts()[i++ & 63].toDouble(&ok);
    benchmark::DoNotOptimize(d);
  }
}
void tv_locale(benchmark::State& s) {
  QLocale l(QLocale::English, QLocale::UnitedStates);
  size_t i = 0;
  for (auto _ : s) {
    bool ok;
    double d = l.toDouble(texts()[i++ & 63], &ok);
    benchmark::DoNotOptimize(d);
  }
}
void tv_eng(benchmark::State& s) {
  static const char16_t pre[] = u"TGMkmunpfa";
  static const double mul[] = {1e12, 1e9, 1e6, 1e3, 1e-3, 1e-6, 1e-9, 1e-12, 1e-15, 1e-18};
  size_t i = 0;
  for (auto _ : s) {
    QStringView t(eng_texts()[i++ & 63]);
    qsizetype b = t.indexOf(u' ');
    bool ok;
    double d = t.left(b).toDouble(&ok);
    QStringView suf = t.mid(b + 1);
    if (suf != u"V" && suf.endsWith(u"V"))
      for (int k = 0; k < 10; ++k)
        if (suf[0] == pre[k]) {
          d *= mul[k];
          break;
        }
    if (!ok) s.SkipWithError("no number");
    benchmark::DoNotOptimize(d);
  }
}
void en_meta(benchmark::State& s) {
  QMetaEnum m = s.range(0) == 10 ? QMetaEnum::fromType<BenchEnums::Choice10>()
                                 : QMetaEnum::fromType<BenchEnums::Choice1000>();
  std::vector<std::string> q;
  uint64_t x = 99;
  std::string pre = s.range(0) == 10 ? "C10_" : "C1000_";
  for (int i = 0; i < 64; ++i) {
    x = x * 6364136223846793005ull + 1442695040888963407ull;
    q.push_back(pre + ChoiceName(int((x >> 33) % uint64_t(s.range(0)))));
  }
  size_t i = 0;
  for (auto _ : s) {
    bool ok;
    int v = m.keyToValue(q[i++ & 63].c_str(), &ok);
    if (!ok) s.SkipWithError("not found");
    benchmark::DoNotOptimize(v);
  }
}
void en_list(
    benchmark::State& s) {  // case-insensitive search of a string list, as a combo box does
  QStringList l;
  for (int i = 0; i < s.range(0); ++i) l << QString::fromStdString(ChoiceName(i));
  std::vector<QString> q;
  uint64_t x = 99;
  for (int i = 0; i < 64; ++i) {
    x = x * 6364136223846793005ull + 1442695040888963407ull;
    q.push_back(l[int((x >> 33) % uint64_t(s.range(0)))].toUpper());
  }
  size_t i = 0;
  for (auto _ : s) {
    const QString& t = q[i++ & 63];
    int r = -1;
    for (int k = 0; k < l.size(); ++k)
      if (l[k].compare(t, Qt::CaseInsensitive) == 0) {
        r = k;
        break;
      }
    if (r < 0) s.SkipWithError("not found");
    benchmark::DoNotOptimize(r);
  }
}
void create(benchmark::State& s) {
  for (auto _ : s) {
    auto* o = new Obj;
    benchmark::DoNotOptimize(o);
    delete o;
  }
}
void create1(benchmark::State& s) {
  uint64_t n = 0;
  Listener l(&n);
  for (auto _ : s) {
    auto* o = new Obj;
    QObject::connect(o, &Obj::valueChanged, &l, &Listener::on, Qt::DirectConnection);
    benchmark::DoNotOptimize(o);
    delete o;
  }
}
void attach_detach(benchmark::State& s) {
  Rig r(s.range(0));
  Listener l(&r.calls);
  for (auto _ : s) {
    auto c = QObject::connect(&r.o, &Obj::valueChanged, &l, &Listener::on, Qt::DirectConnection);
    QObject::disconnect(c);
  }
}
uint64_t g_n;
void scale0(benchmark::State& s) {
  Scale(
      s, [](size_t) { return new Obj; }, [](Obj* o, double v) { o->setValue(v); },
      [](Obj* o) { delete o; });
}
// A function object as the listener: no second QObject, so the bytes are those of the connection.
void scale1(benchmark::State& s) {
  Scale(
      s,
      [](size_t) {
        auto* o = new Obj;
        QObject::connect(o, &Obj::valueChanged, [](double) { ++g_n; });
        return o;
      },
      [](Obj* o, double v) { o->setValue(v); }, [](Obj* o) { delete o; });
}

}  // namespace

int main(int argc, char** argv) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("set_changed/direct", sc<set_direct>)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_changed/by_name", sc<set_name>)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_changed/qproperty", psc)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_same/direct", ss<set_direct>);
  RegisterBenchmark("set_same/by_name", ss<set_name>);
  RegisterBenchmark("set_same/qproperty", pss);
  RegisterBenchmark("batch10/block_signals", b10);
  RegisterBenchmark("batch10/qproperty_group", pb10);
  RegisterThreads("threads_1M/direct", th);
  RegisterBenchmark("get/by_name", get_name);
  RegisterBenchmark("value_to_text/QString_number", vt_number);
  RegisterBenchmark("value_to_text/QLocale_toString", vt_locale);
  RegisterBenchmark("value_to_text/QLocale_dataSize", vt_data);
  RegisterBenchmark("value_to_text_eng/QString_number", vt_eng);
  RegisterBenchmark("text_to_value/QString_toDouble", tv_string);
  RegisterBenchmark("text_to_value/QLocale_toDouble", tv_locale);
  RegisterBenchmark("text_to_value_eng/QStringView_toDouble", tv_eng);
  RegisterBenchmark("enum_from_string/QMetaEnum", en_meta)->Arg(10)->Arg(1000);
  RegisterBenchmark("enum_from_string/QStringList_nocase", en_list)->Arg(10)->Arg(1000);
  RegisterBenchmark("create/0_listeners", create);
  RegisterBenchmark("create/1_listener", create1);
  RegisterBenchmark("attach_detach/direct", attach_detach)->Arg(0)->Arg(8)->Arg(1000);
  RegisterScale("scale/0_listeners", scale0);
  RegisterScale("scale/1_listener", scale1);
  return RunBenchmarks(argc, argv);
}

#include <Qt.moc>

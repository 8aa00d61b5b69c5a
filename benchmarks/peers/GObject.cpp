// GLib GObject: a property with range (GParamSpecDouble) and the notify signal.
#define G_DISABLE_CAST_CHECKS
#include "benchmarks/Cases.h"

#include <glib-object.h>

using namespace cvars::benchmarks;

typedef struct {
  GObject parent;
  double value, def, min, max, grain;
  char *name, *remote, *unit;
  unsigned flags;
} BenchObj;
typedef struct {
  GObjectClass parent;
} BenchObjClass;

G_DEFINE_TYPE(BenchObj, bench_obj, G_TYPE_OBJECT)

static GParamSpec* p_value;

static void bench_obj_set_value(BenchObj* o, double v) {
  double c = v < o->min ? o->min : v > o->max ? o->max : v;
  double r = std::floor(c / o->grain + 0.5) * o->grain;
  if (r == o->value) return;
  o->value = r;
  g_object_notify_by_pspec(G_OBJECT(o), p_value);
}
static void set_property(GObject* g, guint id, const GValue* v, GParamSpec* ps) {
  if (id == 1)
    bench_obj_set_value(reinterpret_cast<BenchObj*>(g), g_value_get_double(v));
  else
    G_OBJECT_WARN_INVALID_PROPERTY_ID(g, id, ps);
}
static void get_property(GObject* g, guint id, GValue* v, GParamSpec* ps) {
  if (id == 1)
    g_value_set_double(v, reinterpret_cast<BenchObj*>(g)->value);
  else
    G_OBJECT_WARN_INVALID_PROPERTY_ID(g, id, ps);
}
static void finalize(GObject* g) {
  BenchObj* o = reinterpret_cast<BenchObj*>(g);
  g_free(o->name);
  g_free(o->remote);
  g_free(o->unit);
  G_OBJECT_CLASS(bench_obj_parent_class)->finalize(g);
}
static void bench_obj_init(BenchObj*) {}
static void bench_obj_class_init(BenchObjClass* k) {
  GObjectClass* g = G_OBJECT_CLASS(k);
  g->set_property = set_property;
  g->get_property = get_property;
  g->finalize = finalize;
  p_value = g_param_spec_double(
      "value", nullptr, nullptr, kMin, kMax, 0.0,
      GParamFlags(G_PARAM_READWRITE | G_PARAM_EXPLICIT_NOTIFY | G_PARAM_STATIC_STRINGS));
  g_object_class_install_property(g, 1, p_value);
}

namespace {

BenchObj* make() {
  BenchObj* o = static_cast<BenchObj*>(g_object_new(bench_obj_get_type(), nullptr));
  o->min = kMin;
  o->max = kMax;
  o->grain = kGrain;
  o->name = g_strdup("Trigger Level");
  o->remote = g_ascii_strup(o->name, -1);
  g_strdelimit(o->remote, " ", '_');
  o->unit = g_strdup("V");
  o->def = o->value = Fit(1.0);
  return o;
}
void on_notify(GObject*, GParamSpec*, gpointer d) { ++*static_cast<uint64_t*>(d); }
BenchObj* make_l(int64_t n, uint64_t* calls) {
  BenchObj* o = make();
  for (int64_t i = 0; i < n; ++i)
    g_signal_connect(o, "notify::value", G_CALLBACK(on_notify), calls);
  return o;
}
void set_direct(BenchObj& o, double v) { bench_obj_set_value(&o, v); }
void set_name(BenchObj& o, double v) { g_object_set(&o, "value", v, nullptr); }

template <void (*F)(BenchObj&, double)>
void sc(benchmark::State& s) {
  uint64_t n = 0;
  BenchObj* o = make_l(s.range(0), &n);
  SetChanged(s, *o, F, &n, uint64_t(s.range(0)));
  g_object_unref(o);
}
template <void (*F)(BenchObj&, double)>
void ss(benchmark::State& s) {
  uint64_t n = 0;
  BenchObj* o = make_l(1, &n);
  SetSame(s, *o, F, &n);
  g_object_unref(o);
}
template <void (*F)(BenchObj&, double)>
void b10(benchmark::State& s) {
  uint64_t n = 0;
  BenchObj* o = make_l(1, &n);
  Batch10(
      s, *o, [](BenchObj& x) { g_object_freeze_notify(G_OBJECT(&x)); }, F,
      [](BenchObj& x) { g_object_thaw_notify(G_OBJECT(&x)); }, &n);
  g_object_unref(o);
}
void th(benchmark::State& s) {
  Threads1M(
      s,
      [] {
        auto* c = new uint64_t(0);
        return std::make_pair(make_l(1, c), c);
      },
      [](std::pair<BenchObj*, uint64_t*>& p, double v) { bench_obj_set_value(p.first, v); },
      [](std::pair<BenchObj*, uint64_t*>& p) {
        g_object_unref(p.first);
        delete p.second;
      });
}
void get_direct_name(benchmark::State& s) {
  BenchObj* o = make();
  for (auto _ : s) {
    double d;
    g_object_get(o, "value", &d, nullptr);
    benchmark::DoNotOptimize(d);
  }
  g_object_unref(o);
}

void vt_transform(benchmark::State& s) {
  GValue a = G_VALUE_INIT, b = G_VALUE_INIT;
  g_value_init(&a, G_TYPE_DOUBLE);
  g_value_init(&b, G_TYPE_STRING);
  size_t i = 0;
  for (auto _ : s) {
    g_value_set_double(&a, TextValues()[i++ & 63].v);
    g_value_transform(&a, &b);
    benchmark::DoNotOptimize(g_value_get_string(&b));
  }
  g_value_unset(&b);
}
void vt_printf(benchmark::State& s) {
  size_t i = 0;
  for (auto _ : s) {
    char* t = g_strdup_printf("%.*f", 3, Values()[i++ & 1023]);
    benchmark::DoNotOptimize(t);
    g_free(t);
  }
}
void vt_formatd(benchmark::State& s) {
  char b[64];
  size_t i = 0;
  for (auto _ : s) {
    g_ascii_formatd(b, 64, "%.3f", Values()[i++ & 1023]);
    benchmark::DoNotOptimize(b);
  }
}
void vt_eng(benchmark::State& s) {
  size_t i = 0;
  for (auto _ : s) {
    auto& t = TextValues()[i++ & 63];
    Engineering e = ToEngineering(t.v, t.step);
    char* r = g_strdup_printf("%.*f%s%s", e.decimals, e.mantissa, PrefixText(e.k), "V");
    benchmark::DoNotOptimize(r);
    g_free(r);
  }
}

const std::vector<std::string>& texts() {
  static const auto t = [] {
    std::vector<std::string> r;
    for (size_t i = 0; i < 64; ++i) {
      char b[64];
      std::snprintf(b, 64, "%.3f", Values()[i]);
      r.push_back(b);
    }
    return r;
  }();
  return t;
}
const std::vector<std::string>& eng_texts() {
  static const auto t = [] {
    std::vector<std::string> r;
    for (auto& x : TextValues()) {
      Engineering e = ToEngineering(x.v, x.step);
      char b[64];
      std::snprintf(b, 64, "%.*f%sV", e.decimals, e.mantissa, PrefixText(e.k));
      r.push_back(b);
    }
    return r;
  }();
  return t;
}
void tv_strtod(benchmark::State& s) {
  size_t i = 0;
  for (auto _ : s) {
    double d = g_ascii_strtod(texts()[i++ & 63].c_str(), nullptr);
    benchmark::DoNotOptimize(d);
  }
}
void tv_eng(benchmark::State& s) {
  static const char* pre[] = {"T", "G", "M", "k", "m", "u", "n", "p", "f", "a"};
  static const double mul[] = {1e12, 1e9, 1e6, 1e3, 1e-3, 1e-6, 1e-9, 1e-12, 1e-15, 1e-18};
  size_t i = 0;
  for (auto _ : s) {
    char* end;
    double d = g_ascii_strtod(eng_texts()[i++ & 63].c_str(), &end);
    while (*end == ' ') ++end;
    if (*end && std::strcmp(end, "V") != 0) {
      for (int k = 0; k < 10; ++k)
        if (g_str_has_prefix(end, pre[k]) && std::strcmp(end + 1, "V") == 0) {
          d *= mul[k];
          break;
        }
    }
    benchmark::DoNotOptimize(d);
  }
}
GEnumClass* enum_class(int n) {
  auto* v = g_new0(GEnumValue, n + 1);
  for (int i = 0; i < n; ++i) {
    char* t = g_strdup(ChoiceName(i).c_str());
    v[i] = {i, t, t};
  }
  char* nm = g_strdup_printf("BenchEnum%d", n);
  return static_cast<GEnumClass*>(g_type_class_ref(g_enum_register_static(nm, v)));
}
void en(benchmark::State& s) {
  static GEnumClass* c10 = enum_class(10);
  static GEnumClass* c1000 = enum_class(1000);
  GEnumClass* c = s.range(0) == 10 ? c10 : c1000;
  std::vector<std::string> q;
  uint64_t x = 99;
  for (int i = 0; i < 64; ++i) {
    x = x * 6364136223846793005ull + 1442695040888963407ull;
    q.push_back(ChoiceName(int((x >> 33) % uint64_t(s.range(0)))));
  }
  size_t i = 0;
  for (auto _ : s) {
    GEnumValue* e = g_enum_get_value_by_nick(c, q[i++ & 63].c_str());
    if (!e) s.SkipWithError("not found");
    benchmark::DoNotOptimize(e);
  }
}
void create(benchmark::State& s) {
  for (auto _ : s) {
    BenchObj* o = make();
    benchmark::DoNotOptimize(o);
    g_object_unref(o);
  }
}
void create_l1(benchmark::State& s) {
  uint64_t n = 0;
  for (auto _ : s) {
    BenchObj* o = make_l(1, &n);
    benchmark::DoNotOptimize(o);
    g_object_unref(o);
  }
}
void attach_detach(benchmark::State& s) {
  uint64_t n = 0;
  BenchObj* o = make_l(s.range(0), &n);
  for (auto _ : s) {
    gulong id = g_signal_connect(o, "notify::value", G_CALLBACK(on_notify), &n);
    g_signal_handler_disconnect(o, id);
  }
  g_object_unref(o);
}
uint64_t g_calls;
void scale0(benchmark::State& s) {
  Scale(
      s, [](size_t) { return make(); }, [](BenchObj* o, double v) { bench_obj_set_value(o, v); },
      [](BenchObj* o) { g_object_unref(o); });
}
void scale1(benchmark::State& s) {
  Scale(
      s, [](size_t) { return make_l(1, &g_calls); },
      [](BenchObj* o, double v) { bench_obj_set_value(o, v); },
      [](BenchObj* o) { g_object_unref(o); });
}

}  // namespace

int main(int argc, char** argv) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("set_changed/direct", sc<set_direct>)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_changed/by_name", sc<set_name>)->Arg(0)->Arg(1)->Arg(8);
  RegisterBenchmark("set_same/direct", ss<set_direct>);
  RegisterBenchmark("set_same/by_name", ss<set_name>);
  RegisterBenchmark("batch10/direct", b10<set_direct>);
  RegisterBenchmark("batch10/by_name", b10<set_name>);
  RegisterThreads("threads_1M/direct", th);
  RegisterBenchmark("get/by_name", get_direct_name);
  RegisterBenchmark("value_to_text/g_value_transform", vt_transform);
  RegisterBenchmark("value_to_text/g_strdup_printf", vt_printf);
  RegisterBenchmark("value_to_text/g_ascii_formatd", vt_formatd);
  RegisterBenchmark("value_to_text_eng/g_strdup_printf", vt_eng);
  RegisterBenchmark("text_to_value/g_ascii_strtod", tv_strtod);
  RegisterBenchmark("text_to_value_eng/g_ascii_strtod", tv_eng);
  RegisterBenchmark("enum_from_string/by_nick", en)->Arg(10)->Arg(1000);
  RegisterBenchmark("create/0_listeners", create);
  RegisterBenchmark("create/1_listener", create_l1);
  RegisterBenchmark("attach_detach/direct", attach_detach)->Arg(0)->Arg(8)->Arg(1000);
  RegisterScale("scale/0_listeners", scale0);
  RegisterScale("scale/1_listener", scale1);
  return RunBenchmarks(argc, argv);
}

#include "fixtures/parse_text.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TaskInfo batch(const std::string& lines) {
    return firstTask("$a\n%batch\n" + lines + "\n");
}

TEST(Batch, TheShortFormIsALaneCount) {
    const TaskInfo task = firstTask("$a\n%batch\nlane 2\ncollect x\ncluster\n%batch 4\nlane 9\n");
    EXPECT_EQ(task.batchLanes, 4);
    EXPECT_TRUE(task.batchCollect.empty());
    EXPECT_FALSE(task.batchCluster->present);
}

TEST(Batch, ReadsLanesCollectAndCluster) {
    const TaskInfo task = batch("LANES 8 # c\n\ncollect *.xyz\ncollect required 'a b' As out dir/x\n"
                                "Collect --REQUIRED c to d\ncluster");
    EXPECT_EQ(task.batchLanes, 8);
    ASSERT_EQ(task.batchCollect.size(), 3U);
    EXPECT_EQ(task.batchCollect[0].pattern, "*.xyz");
    EXPECT_FALSE(task.batchCollect[0].required);
    EXPECT_EQ(task.batchCollect[1].pattern, "a b");
    EXPECT_EQ(task.batchCollect[1].destination, "out dir/x");
    EXPECT_TRUE(task.batchCollect[1].required);
    EXPECT_EQ(task.batchCollect[2].destination, "d");
    EXPECT_TRUE(task.batchCollect[2].required);
    const BatchCluster& cluster = *task.batchCluster;
    EXPECT_TRUE(cluster.present);
    EXPECT_EQ(cluster.metric, ClusterMetric::dist);
    EXPECT_EQ(cluster.geometryThreshold, 0.1);
    EXPECT_EQ(cluster.energyThreshold, 0.25);
    EXPECT_EQ(cluster.temperature, 298.15);
    EXPECT_FALSE(cluster.hasMinWeight || cluster.hasAccumulation || cluster.energyOff);
}

TEST(Batch, ClusterOptionsInAllSpellings) {
    const std::pair<const char*, double BatchCluster::*> rows[] = {
        {"geo", &BatchCluster::geometryThreshold},
        {"Geometry", &BatchCluster::geometryThreshold},
        {"geo-thresh", &BatchCluster::geometryThreshold},
        {"geometry-threshold", &BatchCluster::geometryThreshold},
        {"energy", &BatchCluster::energyThreshold},
        {"ener", &BatchCluster::energyThreshold},
        {"energy-threshold", &BatchCluster::energyThreshold},
        {"ener-thresh", &BatchCluster::energyThreshold},
        {"temperature", &BatchCluster::temperature},
        {"temp", &BatchCluster::temperature},
        {"min", &BatchCluster::minWeight},
        {"weight", &BatchCluster::minWeight},
        {"boltz-thresh", &BatchCluster::minWeight},
        {"accum", &BatchCluster::accumulation},
        {"boltz-accum", &BatchCluster::accumulation},
    };
    for (const auto& [key, field] : rows) {
        EXPECT_EQ(batch("lane 1\ncluster " + std::string(key) + "=0.5").batchCluster.get().*field, 0.5)
            << key;
    }
    for (const char* metric : {"dist", "Distance", "fingerprint"}) {
        EXPECT_EQ(batch("lane 1\ncluster " + std::string(metric)).batchCluster->metric, ClusterMetric::dist);
    }
    const BatchCluster off = *batch("lane 1\ncluster RMSD energy=OFF").batchCluster;
    EXPECT_EQ(off.metric, ClusterMetric::rmsd);
    EXPECT_TRUE(off.energyOff);
    const BatchCluster ends = *batch("lane 1\ncluster min=0 accum=1").batchCluster;
    EXPECT_TRUE(ends.hasMinWeight && ends.hasAccumulation);
}

TEST(Batch, FaultsOfEntriesCarryTheirLine) {
    const std::pair<const char*, const char*> rows[] = {
        {"lane 2\nlanes 3", "t.mq:4:1-4:8: error: task 'a' has duplicate %batch lane entries"},
        {"lane",
         "t.mq:3:1-3:5: error: task 'a' has invalid %batch lane entry; expected 'lane <positive-integer>'"},
        {"lane 0",
         "t.mq:3:1-3:7: error: task 'a' has invalid %batch lane entry; expected 'lane <positive-integer>'"},
        {"lane 2 3",
         "t.mq:3:1-3:9: error: task 'a' has invalid %batch lane entry; expected 'lane <positive-integer>'"},
        {"lane 2147483648",
         "t.mq:3:1-3:16: error: task 'a' has invalid %batch lane entry; expected 'lane <positive-integer>'"},
        {"collect",
         "t.mq:3:1-3:8: error: task 'a' has invalid %batch collect entry; expected 'collect [required] "
         "<pattern> [as <destination>]'"},
        {"collect required", "t.mq:3:1-3:17: error: task 'a' has invalid %batch collect entry; expected "
                             "'collect [required] <pattern> "
                             "[as <destination>]'"},
        {"collect ' '", "t.mq:3:1-3:12: error: task 'a' has empty %batch collect source pattern"},
        {"collect a in b",
         "t.mq:3:1-3:15: error: task 'a' has invalid %batch collect entry; use 'as' or 'to' before "
         "the destination pattern"},
        {"collect a To",
         "t.mq:3:1-3:13: error: task 'a' has invalid %batch collect destination; expected a path "
         "after 'To'"},
        {"cluster\ncluster", "t.mq:4:1-4:8: error: task 'a' has duplicate %batch cluster entries"},
        {"cluster Euclid", "t.mq:3:1-3:15: error: task 'a' has invalid %batch cluster metric 'euclid'; "
                           "expected 'dist' or 'rmsd'"},
        {"cluster dist x",
         "t.mq:3:1-3:15: error: task 'a' has invalid %batch cluster option 'x'; expected key=value"},
        {"cluster geo=",
         "t.mq:3:1-3:13: error: task 'a' has invalid %batch cluster option 'geo='; expected key=value"},
        {"cluster =1",
         "t.mq:3:1-3:11: error: task 'a' has invalid %batch cluster option '=1'; expected key=value"},
        {"cluster Foo=1", "t.mq:3:1-3:14: error: task 'a' has unknown %batch cluster option 'foo'"},
        {"cluster geo=1 Geometry=2",
         "t.mq:3:1-3:25: error: task 'a' has duplicate %batch cluster option 'geo'"},
        {"cluster temp=1x", "t.mq:3:1-3:16: error: task 'a' has invalid numeric value '1x' for %batch "
                            "cluster option 'temperature'"},
        {"cluster geo=inf",
         "t.mq:3:1-3:16: error: task 'a' has invalid numeric value 'inf' for %batch cluster option 'geo'"},
        {"cluster geo=nan",
         "t.mq:3:1-3:16: error: task 'a' has invalid numeric value 'nan' for %batch cluster option 'geo'"},
        {"cluster geo=0", "t.mq:3:1-3:14: error: task 'a' requires cluster geo to be positive"},
        {"cluster energy=-1", "t.mq:3:1-3:18: error: task 'a' requires cluster energy to be positive or off"},
        {"cluster temp=0", "t.mq:3:1-3:15: error: task 'a' requires cluster temperature to be positive"},
        {"cluster min=1", "t.mq:3:1-3:14: error: task 'a' requires cluster min to be in [0, 1)"},
        {"cluster accum=0", "t.mq:3:1-3:16: error: task 'a' requires cluster accum to be in (0, 1]"},
        {"cluster energy=off",
         "t.mq:3:1-3:19: error: task 'a' only permits cluster energy=off with the rmsd metric"},
        {"cluster rmsd energy=off min=0.1",
         "t.mq:3:1-3:32: error: task 'a' cannot combine cluster energy=off with Boltzmann filtering"},
        {"Gather x", "t.mq:3:1-3:9: error: task 'a' has unknown %batch block key 'gather'; expected 'lane', "
                     "'collect', or 'cluster'"},
    };
    for (const auto& [lines, message] : rows) {
        EXPECT_EQ(faultOf("$a\n%batch\n" + std::string(lines) + "\n"), message);
    }
}

TEST(Batch, FaultsOfTheWholeBlockStandAlone) {
    for (const char* value : {"0", "x", "2147483648", "-1", "2 3"}) {
        EXPECT_EQ(faultOf("$a\n%batch " + std::string(value) + "\n"), "task 'a' has invalid %batch value '" +
                                                                          std::string(value) +
                                                                          "'; expected a positive integer");
    }
    EXPECT_EQ(faultOf("$a\n%batch\n"), "task 'a' has a %batch block without 'lane <positive-integer>'");
    EXPECT_EQ(faultOf("$a\n%batch\ncollect x\n"),
              "task 'a' has a %batch block without 'lane <positive-integer>'");
}

} // namespace
} // namespace morquill::taskdsl

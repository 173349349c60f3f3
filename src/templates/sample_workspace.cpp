#include "templates/sample_workspace.h"

#include "console/messages.h"
#include "support/file.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace morquill::templates {

std::string_view sampleGeometry() noexcept {
    return R"XYZ(3
0 1
O         0.00000000     0.00000000     0.22039400
H        -0.00000000     0.75585400    -0.48157700
H        -0.00000000    -0.75585400    -0.48157700
)XYZ";
}

std::string_view sampleTaskFile() noexcept {
    return R"TASK(#!/usr/bin/env morquill
# 本文件可作为脚本直接运行：赋予执行权限后执行 ./test.mq 即可
# inputname 是预设占位符，代表不含后缀的输入文件名
autorun: true
define:
  func: B3LYP
  func_orca: B3LYP
  bset: def2SVP
  basis_orca: def2-TZVP
  scrf: "scrf=(smd,solvent=water)"
  solvent_orca: "CPCM(water)"
  DFT-D: em=gd3bj

$opt
    %source origin                 # the geometry of test.xyz
    %control
        totcore 8
        totmem 16000
    %keywords "opt freq [func]/[bset] [scrf] [DFT-D] out=wfn"
    %preprocess
        echo "[taskname] started" > [inputname].note
    %process
        grep "SCF Done" [inputname].log | tail -n 1 >> [inputname].note
        grep "Frequencies" [inputname].log >> [inputname].note
    %meta
        strucid opt
    %extrainput << EOF
[inputname].wfn
EOF

$N-1
    %source opt                    # the cation at the optimised geometry
    %keywords "[func]/[bset] [scrf] [DFT-D] out=wfn"
    %mod
        spin add 1
        charge add 1
    %meta
        strucid opt
    %extrainput << EOF
[inputname].wfn
EOF

$N+1
    %source opt                    # the anion at the optimised geometry
    %keywords "[func]/[bset] [scrf] [DFT-D] out=wfn"
    %mod
        spin add 1
        charge subtract 1
    %meta
        strucid opt
    %extrainput << EOF
[inputname].wfn
EOF

$CDFT
    %source opt
    %when
        completed N+1
        completed N-1
    %program script
    %runner bash
    %meta
        strucid opt
    %body << MQ_BODY
wfn=[rootname]_opt.wfn
    [cdft]
        cation=[rootname]_N-1.wfn
        anion=[rootname]_N+1.wfn
%process
    print dual descriptor
%command
    echo "conceptual DFT indices of [rootname]"
end
MQ_BODY

$orcatest
    %source opt
    %program orca
    %keywords "[func_orca] [basis_orca] [solvent_orca] TightSCF"
    %meta
        strucid opt
    %extrainput << EOF_ORCA
%scf
    MaxIter 200
end
EOF_ORCA
)TASK";
}

int createSampleWorkspace() {
    const std::string directory = "test";
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (!isDirectory(directory)) {
        console::reportError("could not create directory: " + directory + "/");
        return 1;
    }
    struct SampleFile {
        std::string path;
        std::string_view text;
    };
    for (const auto& file : {SampleFile{directory + "/test.xyz", sampleGeometry()},
                             SampleFile{directory + "/test.mq", sampleTaskFile()}}) {
        if (!writeTextFile(file.path, file.text)) {
            console::reportError("could not write file: " + file.path);
            return 1;
        }
    }
    console::printNote("Test workspace created: " + directory + "/");
    return 0;
}

} // namespace morquill::templates

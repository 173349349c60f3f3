"""The inputs of the measurements: task files, plots, derives, trees. The same numbers make the same bytes.

Texts come in pieces: a child's peak of memory counts what its parent held when it was started, so that the one who
measures must stay small."""

import os


def chain(tasks):
    """A chain of ORCA tasks of ten lines each, as a task file."""
    yield "dsl_version: 2\ntotcore: 8\n\n"
    for i in range(tasks):
        before = f"task_{i - 1}" if i else "origin"
        yield (
            f"$task_{i}\n  %source {before}\n  %program orca\n  %control\n    totcore 8\n    totmem 16000\n"
            f'  %keywords "B3LYP def2-TZVP TightSCF Opt Freq"\n  %when\n    completed task_{max(i - 1, 0)} # wait\n\n'
        )


def short_chain(tasks):
    """A chain of tasks of about 100 bytes each."""
    yield "dsl_version: 2\n"
    for i in range(tasks):
        before = f"task_{i - 1}" if i else "origin"
        yield f'$task_{i}\n  %source {before}\n  %keywords "B3LYP/def2TZVP em=gd3bj scrf=(smd,solvent=water) opt freq"\n'


def chain_as_xml(tasks):
    """The same chain as XML, one element per line, for a formatter of XML to read and print."""
    yield '<?xml version="1.0"?>\n<document dsl_version="2">\n<settings>\n<totcore>8</totcore>\n</settings>\n'
    for i in range(tasks):
        before = f"task_{i - 1}" if i else "origin"
        yield (
            f'<task name="task_{i}">\n<source>{before}</source>\n<program>orca</program>\n<control>\n'
            f"<totcore>8</totcore>\n<totmem>16000</totmem>\n</control>\n"
            f"<keywords>B3LYP def2-TZVP TightSCF Opt Freq</keywords>\n"
            f"<when>completed task_{max(i - 1, 0)}<!-- wait --></when>\n</task>\n"
        )
    yield "</document>\n"


def variants(values):
    """One task over five axes of `values` values each: values ** 5 variants."""
    axis = ",".join(str(v) for v in range(1, values + 1))
    axes = "".join(f"  {name}: {axis}\n" for name in "abcde")
    yield f'dsl_version: 2\nmatrix:\n{axes}$sp\n  %keywords "b3lyp/[a][b] scrf=[c] iop=[d][e]"\n'


def plots(count):
    """Curves of twenty lines each."""
    for i in range(count):
        yield (
            f'@plot curve scan_{i}\n  from task scan\n  x scan.distance label "distance" unit "angstrom"\n'
        )
        for k in range(8):
            yield (
                f'  series s{k} = (scan.energy - min(scan.energy)) * 627.5095 + {k} label "state {k}"\n'
            )
        yield (
            '  axis x:\n    label "r"\n  axis y:\n    label "E"\n  title "scan"\n  style linepoints\n'
            '  theme scientific\n  output "scan.png"\n  size 900 600\n@end\n\n'
        )


def derives(count):
    """Derives of sixteen lines each."""
    for i in range(count):
        yield f"@derive d{i}\n"
        for k in range(10):
            yield (f'  let v{k} = convert({{{{ opt.energy }}}} - {{{{ freq.energy }}}}, "kcal/mol")\n')
        yield (
            '  require v0 < 5 else "too high"\n  emit e0 = v0 unit "kcal/mol"\n  emit e1 = v1\n'
            '  emit e2 = v2\n  report "barrier" = v3\n@end\n\n'
        )


def write(path, pieces):
    """Writes the pieces of a text to `path`, whose folder is made where it is missing; returns `path`."""
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="ascii", newline="\n") as file:
        file.writelines(pieces)
    return path


def task_tree(root, folders, files_each, tasks_each):
    """A tree of small task files: `folders` folders with `files_each` files of `tasks_each` tasks; returns `root`."""
    text = list(chain(tasks_each))
    for folder in range(folders):
        for file in range(files_each):
            write(f"{root}/{folder:03}/{file:03}.mq", text)
    return root


def template_library(root, templates):
    """A template folder with that many recipes; returns `root`."""
    text = list(chain(6))
    for i in range(templates):
        write(f"{root}/recipes/r{i}.mq", text)
    return root


def project(root, cases, blocks):
    """A project with a template of the two blocks opt and sp, `cases` cases that link to it, and the folder of
    the block opt in the first `blocks` of them; returns the path of the template."""
    template = write(f"{root}/wide.projmq", "$opt\n  %keywords hf\n$sp\n  %source opt\n  %keywords hf\n")
    for i in range(cases):
        case = f"{root}/m{i}"
        os.makedirs(f"{case}/opt" if i < blocks else case)
        os.symlink("../wide.projmq", f"{case}/m{i}.mq")
    return template


def block_outputs(root, cases, megabytes):
    """Fills the folder opt of the first `cases` cases with text in which no block name occurs; returns its bytes."""
    line = "geometry of the molecule after step 12, energy -76.026760 "
    per_case = megabytes * 1_000_000 // cases
    text = (line * 20 + "\n") * (per_case // (20 * len(line) + 1))
    for i in range(cases):
        write(f"{root}/m{i}/opt/opt_log.txt", text)
    return len(text) * cases

#!/usr/bin/perl
# Applies the recipes of CONTRIBUTING.md to a copy of the sources: apply.pl ROOT FOLDER
# A recipe is a section with diffs. Each hunk fits exactly one place of its file, patch takes it without fuzz, and the table
# of recipes counts its files. A script of a recipe becomes a script test of the copy. A file of FOLDER that would not change
# is left as it is, so that a build there compiles only what is new.
use strict;
use warnings;
use File::Compare qw(compare);
use File::Copy qw(copy);
use File::Find qw(find);
use File::Path qw(make_path remove_tree);
use File::Basename qw(dirname);

my ($root, $folder) = @ARGV;
die "usage: see the head of $0\n" unless @ARGV == 2;
my $stage = "$folder.new";
my @failures;

sub slurp {
  my ($path) = @_;
  open my $in, '<', $path or die "$path: $!\n";
  local $/;
  return scalar <$in>;
}

sub store {
  my ($path, $text) = @_;
  open my $out, '>', $path or die "$path: $!\n";
  print $out $text;
  close $out or die "$path: $!\n";
}

# Copies a file with its permissions.
sub put {
  my ($from, $to) = @_;
  make_path(dirname($to));
  copy($from, $to) && chmod((stat $from)[2] & 07777, $to) or die "$to: $!\n";
}

# The files of a diff and their hunks, each as the text that it replaces.
sub parts_of {
  my ($diff) = @_;
  my (@files, %hunks);
  for (split /^(?=--- )/m, $diff) {
    my ($file) = m{^\+\+\+ b/(.+)$}m or die "a diff without a file:\n$_";
    push @files, $file;
    next if m{^--- /dev/null$}m;
    my (undef, @found) = split /^@@ .*\n/m;
    $hunks{$file} = [map { join '', map { /^[ -](.*\n)/ ? $1 : () } /.*\n/g } @found];
  }
  return (\@files, \%hunks);
}

# How often whole lines stand in a text.
sub places {
  my ($lines, $text) = @_;
  return scalar(() = $text =~ /^\Q$lines\E/gm);
}

sub apply_recipe {
  my ($name, $diff) = @_;
  my ($files, $hunks) = parts_of($diff);
  for my $file (sort keys %$hunks) {
    my $text = slurp("$stage/$file");
    for my $hunk (@{$hunks->{$file}}) {
      my $places = places($hunk, $text);
      push @failures, "$name: $file: a hunk fits $places places:\n$hunk" if $places != 1;
    }
  }
  store("$stage.diff", $diff);
  my $output = qx(patch -p1 --forward --fuzz=0 --no-backup-if-mismatch -d '$stage' < '$stage.diff' 2>&1);
  push @failures, "$name:\n$output" if $?;
  unlink "$stage.diff";
  my %count = (src => 0, standin => 0, tests => 0);
  $count{(split m{/})[0]}++ for @$files;
  return join ' | ', map { delete $count{$_} } qw(src standin tests);
}

remove_tree($stage);
make_path($stage);
open my $listed, '-|', 'git', '-C', $root, qw(ls-files -z --cached --others --exclude-standard) or die "git: $!\n";
my @sources = do { local $/ = "\0"; map { s/\0$//r } <$listed> };
close $listed or die "the sources cannot be listed\n";
put("$root/$_", "$stage/$_") for grep { -f "$root/$_" } @sources;

my $document = slurp("$stage/CONTRIBUTING.md");
my %stated = $document =~ /^\| \[([^\]]+)\]\(#[^)]+\) \| (\d+ \| \d+ \| \d+) \|$/mg;
my $scripts = '';
for (split /^(?=## )/m, $document) {
  my ($name) = /^## (.+)$/m or next;
  my $diff = join '', /^```diff\n(.*?)^```$/msg or next;
  my $places = apply_recipe($name, $diff);
  print "$name: $places\n";
  push @failures, "$name: the table counts " . ($stated{$name} // 'nothing') . ", not $places" if ($stated{$name} // '') ne $places;
  delete $stated{$name};
  my ($script) = /^```vbs\n(.*?)^```$/ms or next;
  my $file = 'recipe_' . lc($name) =~ s/\W+/_/gr . '.vbs';
  store("$stage/tests/scripts/$file", $script);
  $scripts .= "script_test($file \${windows_pki})\n";
}
push @failures, "the table counts a recipe that is not there: $_" for sort keys %stated;
my $list = slurp("$stage/tests/scripts/CMakeLists.txt");
$list =~ s/^(?=# A script or a check that has no line here)/$scripts/m or die "no place for the scripts\n";
store("$stage/tests/scripts/CMakeLists.txt", $list);
die join("\n", @failures), "\n" if @failures;

find({ no_chdir => 1, wanted => sub {
  return unless -f;
  my $target = $folder . substr($_, length $stage);
  put($_, $target) unless -e $target && compare($_, $target) == 0;
} }, $stage);
find({ no_chdir => 1, wanted => sub {
  if ($_ eq "$folder/build") { $File::Find::prune = 1; return }
  unlink if -f && !-e $stage . substr($_, length $folder);
} }, $folder);
remove_tree($stage);

#!/usr/bin/perl
# Reads a HIF with Palm::PDB and checks it against the records the engine
# says it wrote: one line of hex per record. Exits 0 when all agree.
use strict;
use warnings;
use Palm::PDB;
use Palm::Raw;

my ($file, $expected_file) = @ARGV;
die "usage: palm_pdb_check.pl FILE EXPECTED\n" unless defined $expected_file;

open(my $fh, '<', $expected_file) or die "cannot read $expected_file: $!\n";
chomp(my @expected = <$fh>);
close $fh;

my $pdb = Palm::PDB->new;
$pdb->Load($file);

my $fail = 0;
sub check {
    my ($what, $got, $want) = @_;
    return if $got eq $want;
    print STDERR "$what: got '$got', want '$want'\n";
    $fail = 1;
}

check('name', $pdb->{name}, 'RouteHIF');
check('type', $pdb->{type}, 'DATA');
check('creator', $pdb->{creator}, 'qHVN');
check('record count', scalar @{$pdb->{records}}, scalar @expected);
for my $i (0 .. $#expected) {
    my $record = $pdb->{records}[$i];
    check("record $i", defined $record ? unpack('H*', $record->{data}) : '', $expected[$i]);
    check("record $i id", defined $record ? $record->{id} : '', $i);
}
exit $fail;
